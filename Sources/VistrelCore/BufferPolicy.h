#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

/// How many frames a second of a display can be kept for the length of the history within a budget of
/// memory. Frames are 4:2:0 with two planes and rows of a multiple of 64 bytes.
struct BufferPolicy {
    /// How far back from the moment of a request a frame is looked for.
    static constexpr std::chrono::milliseconds rewind{80};
    static constexpr std::chrono::milliseconds history{200};
    /// For all displays together.
    static constexpr std::int64_t memoryBudget = 268'435'456;
    /// Frames that a running stream may hold at once.
    static constexpr std::int64_t streamQueueDepth = 3;

    struct Request {
        /// Pixels of one display.
        std::int64_t width = 0;
        std::int64_t height = 0;
        std::int64_t displayCount = 1;
        std::int64_t maximumFPS = 60;
        std::int64_t totalBudget = memoryBudget;
    };

    std::int64_t framesPerSecond = 0;
    /// Slots of one display's history.
    std::int64_t maximumFrames = 0;
    /// Memory that one display's frames may occupy.
    std::int64_t estimatedBytes = 0;

    /// Nothing when the budget holds no useful history.
    static std::optional<BufferPolicy> fitting(const Request& request);

    friend bool operator==(const BufferPolicy&, const BufferPolicy&) = default;
};

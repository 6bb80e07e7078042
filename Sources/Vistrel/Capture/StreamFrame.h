#pragma once

#include "VistrelPlatform/System/PixelBuffer.h"

#include <chrono>
#include <memory>
#include <optional>

/// What a continuous stream of a display delivers: mostly a frame, at times only news about the stream.
struct StreamFrame {
    enum class Status { complete, idle, blank, suspended, started, stopped };

    /// What goes with a frame; absent values were not delivered.
    struct Info {
        std::optional<Status> status;
        /// When the frame was shown, on the host clock.
        std::optional<std::chrono::nanoseconds> displayTime;
    };

    bool isValid = true;
    bool isDataReady = true;
    std::optional<Info> info;
    std::shared_ptr<const PixelBuffer> image;
};

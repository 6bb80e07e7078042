#pragma once

#include "Capture/StreamFrame.h"
#include "VistrelCore/BufferPolicy.h"
#include "VistrelCore/RollingFrameBuffer.h"
#include "VistrelPlatform/CaptureTime.h"
#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/System/PixelBufferPool.h"

#include <functional>
#include <mutex>

/// The receiver's own copy of a frame.
struct CapturedFrame {
    std::uint32_t displayID = 0;
    CaptureTime::Instant timestamp;
    std::shared_ptr<const PixelBuffer> pixelBuffer;
};

/// Takes the frames of one display's stream and keeps copies of the latest ones. Any thread; frames come
/// on the stream's own.
class DisplayFrameReceiver {
public:
    enum class OutputType { screen, audio, microphone };

    using History = RollingFrameBuffer<CapturedFrame, CaptureTime::Instant>;

    struct Setup {
        std::uint32_t displayID = 0;
        /// Pixels.
        std::int64_t width = 0;
        std::int64_t height = 0;
        BufferPolicy policy;
        /// The stream has ended by an error. Called on any thread.
        std::function<void()> onFailure;
    };

    explicit DisplayFrameReceiver(Setup setup);
    DisplayFrameReceiver(const DisplayFrameReceiver&) = delete;
    DisplayFrameReceiver& operator=(const DisplayFrameReceiver&) = delete;

    std::uint32_t displayID() const { return display; }
    const BufferPolicy& policy() const { return bufferPolicy; }

    void streamDidOutput(const StreamFrame& frame, OutputType type);
    /// Keeps a copy of a complete frame; anything else is ignored.
    void receive(const StreamFrame& frame);
    void streamDidStop(const Error& error);
    /// Drops everything; whatever comes afterwards is ignored.
    void invalidate();

    /// Runs `use` on the history while nothing else can.
    void withHistory(const std::function<void(History&)>& use);

private:
    std::uint32_t display;
    BufferPolicy bufferPolicy;
    std::function<void()> onFailure;

    std::mutex lock;
    History history;
    std::unique_ptr<PixelBufferPool> pool;
    bool acceptingFrames = true;
};

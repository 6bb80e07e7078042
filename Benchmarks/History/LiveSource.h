#pragma once

#include "Capture/StreamFrame.h"
#include "VistrelPlatform/X11/SharedSegment.h"
#include "VistrelPlatform/X11/X11Connection.h"

#include <memory>

/// A display as a stream of 4:2:0 frames: whatever has been drawn since the last frame is read through
/// shared memory and converted. One thread. Pixels of the root.
class LiveSource {
public:
    /// Null when the server cannot tell of damage or share memory.
    static std::unique_ptr<LiveSource> create(const QByteArray& displayName, int width, int height);
    ~LiveSource();
    LiveSource(const LiveSource&) = delete;
    LiveSource& operator=(const LiveSource&) = delete;

    /// The display as it is now; idle when nothing was drawn since the last one.
    StreamFrame next();
    /// Pixels read by the last frame.
    std::int64_t pixelsRead() const { return lastPixels; }

private:
    LiveSource(std::shared_ptr<X11Connection> serverConnection, std::unique_ptr<SharedSegment> shared,
               int width, int height);
    bool wasDamaged();
    void convert(QRect damaged);

    std::shared_ptr<X11Connection> connection;
    std::shared_ptr<SharedSegment> segment;
    QRect display;
    std::uint32_t damage = 0;
    std::uint8_t firstEvent = 0;
    std::shared_ptr<PixelBuffer> picture;
    QRect pending;
    std::int64_t lastPixels = 0;
};

#pragma once

#include "VistrelPlatform/Result.h"

#include <QImage>

#include <cstdint>
#include <memory>
#include <vector>

struct PixelSize {
    int width = 0;
    int height = 0;

    friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// A display's picture kept in the window system, ready to be shown behind an overlay window without
/// an upload. Released with its last owner.
class FrozenPicture {
public:
    FrozenPicture() = default;
    FrozenPicture(const FrozenPicture&) = delete;
    FrozenPicture& operator=(const FrozenPicture&) = delete;
    virtual ~FrozenPicture() = default;
};

/// One display's pixels. The images share memory with the capturer, which never writes to it again
/// while a copy of the image is alive.
struct CapturedImage {
    /// What is exported: exactly the size that was asked for. `Format_RGB32`, row 0 at the top.
    QImage image;
    /// What is shown: the display's native pixels; the same as `image` unless that was reduced.
    QImage presentation;
    std::shared_ptr<FrozenPicture> frozen;
};

/// What one display needs to be captured without delay: memory shared with the window system, warmed.
class DisplayFilter {
public:
    DisplayFilter() = default;
    DisplayFilter(const DisplayFilter&) = delete;
    DisplayFilter& operator=(const DisplayFilter&) = delete;
    virtual ~DisplayFilter() = default;
    /// Any one thread at a time. The picture is reduced in the same pass when `size` is smaller than
    /// the display. Our own windows are never in it.
    virtual Result<CapturedImage> capture(PixelSize size) = 0;
};

class ScreenCapturer {
public:
    ScreenCapturer() = default;
    ScreenCapturer(const ScreenCapturer&) = delete;
    ScreenCapturer& operator=(const ScreenCapturer&) = delete;
    virtual ~ScreenCapturer() = default;

    /// Without asking anybody: may this session read the screen? Main thread.
    virtual bool hasPermission() const = 0;
    /// Any thread. Fails with the domain of `windowSystem` when the display is not there.
    virtual Result<std::shared_ptr<DisplayFilter>> prepare(std::uint32_t displayID) = 0;
    /// Whether `captureDirect` works in this session.
    virtual bool supportsDirect() const = 0;
    /// One display with nothing prepared. Any thread.
    virtual Result<CapturedImage> captureDirect(std::uint32_t displayID, PixelSize size) = 0;
};

#pragma once

#include "VistrelPlatform/ScreenCapturer.h"
#include "VistrelPlatform/X11/X11DisplayFilter.h"

#include <memory>
#include <optional>

class WindowRedirection;

/// Pictures of displays through MIT-SHM, on a connection of its own. Constructed, asked for permission and
/// destroyed on the main thread; the rest on any thread.
class X11ScreenCapturer : public ScreenCapturer {
public:
    /// The toolkit's display, whose windows are left out of every picture.
    X11ScreenCapturer();
    /// Another display, on which this program has no windows.
    explicit X11ScreenCapturer(const QByteArray& displayName);
    ~X11ScreenCapturer() override;

    bool hasPermission() const override;
    Result<std::shared_ptr<DisplayFilter>> prepare(std::uint32_t displayID) override;
    bool supportsDirect() const override { return true; }
    Result<CapturedImage> captureDirect(std::uint32_t displayID, PixelSize size) override;

private:
    Result<X11Monitor> findMonitor(std::uint32_t displayID) const;

    std::shared_ptr<X11Connection> connection;
    std::optional<X11DisplayFilter::OwnWindows> own;
    std::unique_ptr<WindowRedirection> redirection;
    mutable bool readable = false;
};

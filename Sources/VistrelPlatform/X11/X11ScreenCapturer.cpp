#include "VistrelPlatform/X11/X11ScreenCapturer.h"

#include "VistrelPlatform/X11/WindowRedirection.h"

#include <algorithm>

X11ScreenCapturer::X11ScreenCapturer() : X11ScreenCapturer(QByteArray()) {
    xcb_connection_t* toolkit = toolkitConnection();
    if (!toolkit)
        return;
    own = X11DisplayFilter::OwnWindows{TopLevelWindows::Client::of(toolkit),
                                       std::make_shared<OwnWindowVeil>(connection)};
    if (connection->isAlive() && connection->extensions().composite)
        redirection = std::make_unique<WindowRedirection>(connection);
}

X11ScreenCapturer::X11ScreenCapturer(const QByteArray& displayName)
    : connection(std::make_shared<X11Connection>(displayName)) {}

X11ScreenCapturer::~X11ScreenCapturer() = default;

bool X11ScreenCapturer::hasPermission() const {
    if (!connection->isAlive() || connection->extensions().wayland)
        return false;
    if (!readable) {
        // A client the server does not trust may not read the root; that does not change while it runs.
        const auto pixel = xcbReply<xcb_get_image_reply>(
            connection->get(),
            xcb_get_image(connection->get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection->root(), 0, 0, 1, 1, ~0U));
        readable = pixel != nullptr;
    }
    return readable;
}

Result<X11Monitor> X11ScreenCapturer::findMonitor(std::uint32_t displayID) const {
    if (!connection->isAlive())
        return tl::unexpected(windowSystemError(WindowSystemFault::connectionLost));
    if (!connection->hasPlainPixels())
        return tl::unexpected(windowSystemError(WindowSystemFault::pixelFormat));
    if (!connection->extensions().monitors)
        return tl::unexpected(windowSystemError(WindowSystemFault::displayMissing));
    const auto monitors = receiveMonitors(connection->get(), requestMonitors(connection->get()));
    if (!monitors)
        return tl::unexpected(monitors.error());
    const auto found = std::ranges::find(*monitors, displayID, &X11Monitor::name);
    if (found == monitors->end())
        return tl::unexpected(windowSystemError(WindowSystemFault::displayMissing));
    return *found;
}

Result<std::shared_ptr<DisplayFilter>> X11ScreenCapturer::prepare(std::uint32_t displayID) {
    const Result<X11Monitor> monitor = findMonitor(displayID);
    if (!monitor)
        return tl::unexpected(monitor.error());
    auto filter = std::make_shared<X11DisplayFilter>(connection, *monitor, own);
    if (const Result<void> warmed = filter->warm(); !warmed)
        return tl::unexpected(warmed.error());
    return filter;
}

Result<CapturedImage> X11ScreenCapturer::captureDirect(std::uint32_t displayID, PixelSize size) {
    const Result<X11Monitor> monitor = findMonitor(displayID);
    if (!monitor)
        return tl::unexpected(monitor.error());
    return X11DisplayFilter::captureOnce(connection, *monitor, size);
}

#pragma once

#include "VistrelPlatform/ScreenCapturer.h"
#include "VistrelPlatform/X11/ResourcePool.h"
#include "VistrelPlatform/X11/ServerPixmap.h"
#include "VistrelPlatform/X11/TopLevelWindows.h"
#include "VistrelPlatform/X11/WindowComposer.h"
#include "VistrelPlatform/X11/X11Monitors.h"

/// One display's shared memory and server pixmap, touched once so that the capture itself waits for no
/// page. Any one thread at a time.
class X11DisplayFilter : public DisplayFilter {
public:
    X11DisplayFilter(std::shared_ptr<X11Connection> connection, X11Monitor monitor,
                     std::optional<TopLevelWindows::Client> own);

    /// Allocates and touches everything a capture uses.
    Result<void> warm();
    Result<CapturedImage> capture(PixelSize size) override;

    /// One display without any of this: a plain `GetImage`.
    static Result<CapturedImage> captureOnce(const std::shared_ptr<X11Connection>& connection,
                                             const X11Monitor& monitor, PixelSize size);

private:
    using Segment = std::shared_ptr<SharedSegment>;

    Result<Segment> lendSegment();
    std::shared_ptr<ServerPixmap> lendPixmap();
    xcb_shm_get_image_cookie_t requestPixels(xcb_drawable_t source, QPoint origin,
                                             const SharedSegment& segment) const;
    Result<void> receivePixels(xcb_shm_get_image_cookie_t cookie) const;
    /// The picture without our windows, in the pixmap and the segment.
    Result<void> composeAround(ServerPixmap& pixmap, const SharedSegment& segment) const;

    std::shared_ptr<X11Connection> connection;
    X11Monitor monitor;
    /// The toolkit has windows on this server.
    bool besideToolkit;
    TopLevelWindows windows;
    WindowComposer composer;
    ResourcePool<SharedSegment> segments;
    ResourcePool<ServerPixmap> pixmaps;
};

#pragma once

#include "VistrelPlatform/ScreenCapturer.h"
#include "VistrelPlatform/X11/OwnWindowVeil.h"
#include "VistrelPlatform/X11/ResourcePool.h"
#include "VistrelPlatform/X11/SharedSegment.h"
#include "VistrelPlatform/X11/TopLevelWindows.h"
#include "VistrelPlatform/X11/WindowComposer.h"
#include "VistrelPlatform/X11/X11Monitors.h"

/// One display's shared memory, touched once so that the capture itself waits for no page. Any one thread at
/// a time.
class X11DisplayFilter : public DisplayFilter {
public:
    /// This program's windows and the veil over them are shared by all displays; absent on a server where
    /// it has none.
    struct OwnWindows {
        TopLevelWindows::Client client;
        std::shared_ptr<OwnWindowVeil> veil;
    };

    X11DisplayFilter(std::shared_ptr<X11Connection> connection, X11Monitor monitor,
                     const std::optional<OwnWindows>& own);

    /// Allocates and touches everything a capture uses.
    Result<void> warm();
    Result<CapturedImage> capture(PixelSize size) override;

    /// One display without any of this: a plain `GetImage`.
    static Result<CapturedImage> captureOnce(const std::shared_ptr<X11Connection>& connection,
                                             const X11Monitor& monitor, PixelSize size);

private:
    using Segment = std::shared_ptr<SharedSegment>;

    Result<Segment> lendSegment();
    xcb_shm_get_image_cookie_t requestPixels(xcb_drawable_t source, QPoint origin,
                                             const SharedSegment& segment) const;
    Result<void> receivePixels(xcb_shm_get_image_cookie_t cookie) const;
    /// The picture without our windows, in the segment.
    Result<void> leaveOutOwnWindows(bool composited, const SharedSegment& segment) const;
    std::shared_ptr<FrozenPicture> frozen(const Segment& segment, TopLevelWindows::Glance glance) const;

    std::shared_ptr<X11Connection> connection;
    X11Monitor monitor;
    std::shared_ptr<OwnWindowVeil> veil;
    TopLevelWindows windows;
    WindowComposer composer;
    ResourcePool<SharedSegment> segments;
};

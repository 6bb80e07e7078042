#pragma once

#include "VistrelPlatform/X11/ServerPixmap.h"
#include "VistrelPlatform/X11/TopLevelWindows.h"

#include <xcb/xfixes.h>

/// Paints what lies under this program's windows over them in a picture of the root, from the other
/// windows' own contents. Needs Composite; those contents are complete where a compositor runs or the
/// windows were redirected before. Any one thread at a time.
class WindowComposer {
public:
    explicit WindowComposer(std::shared_ptr<X11Connection> connection);

    struct Scene {
        QRect area;
        /// Lowest first.
        std::vector<TopLevelWindow> windows;
        /// The root itself is never seen then.
        bool composited = false;
    };

    /// `target` becomes the picture of the scene's area without the windows marked as own.
    void compose(ServerPixmap& target, const Scene& scene) const;

private:
    /// The window's shape with the area's corner as origin. The caller destroys it.
    xcb_xfixes_region_t regionOf(const TopLevelWindow& window, QRect area) const;
    void paintBackground(const ServerPixmap& target, const Scene& scene, QRect covered) const;
    /// A picture of the root's own background where no program announced one.
    void paintPlainBackground(const ServerPixmap& target, QRect area, QRect covered) const;
    void paintWindow(const ServerPixmap& target, QRect area, const TopLevelWindow& window) const;
    void paintPixmap(const ServerPixmap& target, xcb_pixmap_t source, xcb_render_pictformat_t format,
                     QPoint sourceOrigin, QRect into) const;

    std::shared_ptr<X11Connection> connection;
};

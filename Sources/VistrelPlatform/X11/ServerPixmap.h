#pragma once

#include "VistrelPlatform/ScreenCapturer.h"
#include "VistrelPlatform/X11/X11Connection.h"

#include <QRect>

#include <memory>

/// A picture in the X server of the root's own depth. Requests only queue; nothing waits. Any one thread at
/// a time.
class ServerPixmap {
public:
    ServerPixmap(std::shared_ptr<X11Connection> connection, PixelSize size);
    ~ServerPixmap();
    ServerPixmap(const ServerPixmap&) = delete;
    ServerPixmap& operator=(const ServerPixmap&) = delete;

    xcb_pixmap_t id() const { return pixmap; }
    xcb_render_picture_t picture() const { return renderPicture; }
    PixelSize size() const { return pixelSize; }

    /// What the root shows with its top-left corner at `origin`.
    void copyFromRoot(QPoint origin);

private:
    std::shared_ptr<X11Connection> connection;
    PixelSize pixelSize;
    xcb_pixmap_t pixmap;
    xcb_gcontext_t context;
    xcb_render_picture_t renderPicture = XCB_NONE;
};

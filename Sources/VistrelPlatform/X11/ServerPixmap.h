#pragma once

#include "VistrelPlatform/ScreenCapturer.h"
#include "VistrelPlatform/X11/SharedSegment.h"
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
    void copyFrom(const SharedSegment& segment);
    /// The haze that lies over everything before a selection is made.
    void dim();
    /// Copies and dims, in one pass where the server can draw from shared memory.
    void dimFrom(const SharedSegment& segment);
    /// Between two uses: filled with the haze's grey for the next one.
    void rest();

private:
    void fillGrey();

    std::shared_ptr<X11Connection> connection;
    PixelSize pixelSize;
    xcb_pixmap_t pixmap;
    xcb_gcontext_t context;
    xcb_render_picture_t renderPicture = XCB_NONE;
    /// How much of a picture shows through the haze.
    xcb_render_picture_t transparency = XCB_NONE;
    bool isGrey = false;
};

/// A dimmed picture on its way into the server.
class X11FrozenPicture : public FrozenPicture {
public:
    /// `connection` has every request that completes the pixmap queued.
    X11FrozenPicture(std::shared_ptr<X11Connection> connection, std::shared_ptr<ServerPixmap> pixmap);
    ~X11FrozenPicture() override;

    PixelSize size() const { return pixmap->size(); }
    /// Waits until the server has completed the pixmap, so that another connection may use it.
    xcb_pixmap_t awaitPixmap();

private:
    std::shared_ptr<X11Connection> connection;
    std::shared_ptr<ServerPixmap> pixmap;
    xcb_get_input_focus_cookie_t marker;
    bool complete = false;
};

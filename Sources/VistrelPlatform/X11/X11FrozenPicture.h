#pragma once

#include "VistrelPlatform/ScreenCapturer.h"
#include "VistrelPlatform/X11/ServerPixmap.h"
#include "VistrelPlatform/X11/SharedSegment.h"

/// A display's picture as a window can show it without any pixels being sent. Owns what the server draws it
/// from. Any one thread at a time.
class X11FrozenPicture : public FrozenPicture {
public:
    /// What the screen still shows where nobody has drawn since.
    X11FrozenPicture(std::shared_ptr<X11Connection> connection, PixelSize size);
    X11FrozenPicture(std::shared_ptr<X11Connection> connection, PixelSize size,
                     std::shared_ptr<SharedSegment> memory);
    X11FrozenPicture(std::shared_ptr<X11Connection> connection, std::shared_ptr<ServerPixmap> pixmap);

    PixelSize size() const { return pixelSize; }
    /// Queues what shows the picture under the haze that lies over everything before a selection is made.
    /// The window is mapped, has the root's depth and no background, so it begins with what was on the
    /// screen.
    void drawOn(xcb_connection_t* client, xcb_window_t window) const;

private:
    void drawPixels(xcb_connection_t* client, xcb_window_t window) const;

    std::shared_ptr<X11Connection> connection;
    PixelSize pixelSize;
    std::shared_ptr<SharedSegment> memory;
    std::shared_ptr<ServerPixmap> pixmap;
};

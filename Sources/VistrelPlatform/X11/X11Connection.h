#pragma once

#include "VistrelPlatform/X11/Xcb.h"

#include <QByteArray>
#include <QSize>

#include <xcb/render.h>

#include <map>

/// A connection to the X server for pictures alone, so that worker threads never disturb the toolkit's.
/// Any thread. A connection that fails stays an object; everything asked of it fails from then on.
class X11Connection {
public:
    /// The toolkit's display when the name is empty.
    explicit X11Connection(const QByteArray& displayName);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    struct Extensions {
        /// MIT-SHM 1.2, which takes file descriptors.
        bool sharedMemory = false;
        bool render = false;
        /// Composite 0.2 with XFixes 2 regions.
        bool composite = false;
        /// RandR 1.5, which knows monitors.
        bool monitors = false;
        /// A server that itself is a window of a Wayland session and does not hold the screen.
        bool wayland = false;
    };
    /// XCB_NONE all on a connection that failed.
    struct Atoms {
        xcb_atom_t clientList = XCB_NONE;
        xcb_atom_t state = XCB_NONE;
        xcb_atom_t hidden = XCB_NONE;
        xcb_atom_t opacity = XCB_NONE;
        /// The selection of the compositing manager.
        xcb_atom_t compositor = XCB_NONE;
        xcb_atom_t rootPicture = XCB_NONE;
    };

    xcb_connection_t* get() const { return xcb; }
    bool isAlive() const { return xcb_connection_has_error(xcb) == 0; }
    xcb_window_t root() const { return rootID; }
    std::uint8_t depth() const { return rootDepth; }
    xcb_visualid_t visual() const { return rootVisual; }
    const Extensions& extensions() const { return available; }
    const Atoms& atoms() const { return knownAtoms; }
    /// Whether the root's pixels are those of `QImage::Format_RGB32`.
    bool hasPlainPixels() const { return plainPixels; }
    /// XCB_NONE for a visual that RENDER does not know.
    xcb_render_pictformat_t pictureFormat(xcb_visualid_t visual) const;

    /// Waits until the server has handled everything sent before. False when the connection is lost.
    bool synchronize() const;
    /// Throws away what piles up unread: late errors of requests without reply, keyboard mappings.
    void discardEvents() const;

private:
    struct Questions;

    void readScreen();
    Questions ask() const;
    void receive(const Questions& questions);
    void receivePictureFormats(xcb_render_query_pict_formats_cookie_t cookie);

    xcb_connection_t* xcb = nullptr;
    xcb_window_t rootID = XCB_NONE;
    std::uint8_t rootDepth = 0;
    xcb_visualid_t rootVisual = XCB_NONE;
    bool plainPixels = false;
    Extensions available;
    Atoms knownAtoms;
    std::map<xcb_visualid_t, xcb_render_pictformat_t> pictureFormats;
};

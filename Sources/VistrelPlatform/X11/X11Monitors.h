#pragma once

#include "VistrelPlatform/X11/Xcb.h"

#include <QRect>

#include <xcb/randr.h>

#include <vector>

/// A monitor as RandR 1.5 tells it: the atom of its name and its device pixels on the root.
struct X11Monitor {
    xcb_atom_t name = XCB_NONE;
    QRect rect;

    friend bool operator==(const X11Monitor&, const X11Monitor&) = default;
};

xcb_randr_get_monitors_cookie_t requestMonitors(xcb_connection_t* connection);
Result<std::vector<X11Monitor>> receiveMonitors(xcb_connection_t* connection,
                                                xcb_randr_get_monitors_cookie_t cookie);

#include "VistrelPlatform/X11/DisplayReachable.h"

#include <xcb/xcb.h>

bool isDisplayReachable() {
    // Never null, and to be disconnected even when it failed.
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool reachable = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return reachable;
}

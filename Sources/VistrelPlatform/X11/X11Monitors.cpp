#include "VistrelPlatform/X11/X11Monitors.h"

xcb_randr_get_monitors_cookie_t requestMonitors(xcb_connection_t* connection) {
    return xcb_randr_get_monitors(connection, rootWindow(connection), 1);
}

Result<std::vector<X11Monitor>> receiveMonitors(xcb_connection_t* connection,
                                                xcb_randr_get_monitors_cookie_t cookie) {
    const auto reply = xcbResult<xcb_randr_get_monitors_reply>(connection, cookie);
    if (!reply)
        return tl::unexpected(reply.error());
    std::vector<X11Monitor> monitors;
    for (auto monitor = xcb_randr_get_monitors_monitors_iterator(reply->get()); monitor.rem;
         xcb_randr_monitor_info_next(&monitor)) {
        const xcb_randr_monitor_info_t& info = *monitor.data;
        monitors.push_back({info.name, QRect(info.x, info.y, info.width, info.height)});
    }
    return monitors;
}

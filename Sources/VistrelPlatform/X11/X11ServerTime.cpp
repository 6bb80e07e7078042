#include "VistrelPlatform/X11/X11ServerTime.h"

#include <chrono>

namespace {

using std::chrono::milliseconds;

/// The host clock as the server would count it.
std::uint32_t hostMilliseconds() {
    const auto now = std::chrono::duration_cast<milliseconds>(CaptureTime::hostTime());
    return static_cast<std::uint32_t>(now.count());
}

/// A property change is the way to learn the server's time.
std::optional<std::uint32_t> askServer(xcb_connection_t* connection) {
    const xcb_window_t window = xcb_generate_id(connection);
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, 0, window, rootWindow(connection), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    // Sent after the change, so the event is there when this answer is.
    xcbReply<xcb_get_input_focus_reply>(connection, xcb_get_input_focus(connection));
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection)})
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY)
            return reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->time;
    return std::nullopt;
}

} // namespace

X11ServerTime X11ServerTime::measure(const char* displayName) {
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
        xcb_connect(displayName, nullptr), &xcb_disconnect);
    if (xcb_connection_has_error(connection.get()))
        return X11ServerTime(false);
    const std::uint32_t before = hostMilliseconds();
    const auto time = askServer(connection.get());
    const std::uint32_t after = hostMilliseconds();
    // Unsigned differences stay right where the count wraps round. The server may use a time that it
    // read when it began to handle the batch.
    constexpr std::uint32_t toleranceMS = 100;
    return X11ServerTime(time && *time - (before - toleranceMS) <= after - before + 2 * toleranceMS);
}

CaptureTime::Instant X11ServerTime::instantOf(xcb_timestamp_t time) const {
    if (!followsHostClock || time == XCB_CURRENT_TIME)
        return CaptureTime::now();
    const auto now = std::chrono::duration_cast<milliseconds>(CaptureTime::hostTime());
    const auto age = static_cast<std::int32_t>(static_cast<std::uint32_t>(now.count()) - time);
    return CaptureTime::instantOfHostTime(now - milliseconds(age));
}

#include "VistrelPlatform/X11/FrontKeyboard.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace {

/// Focus taken away by another program is taken back this long after, so often, until it stays this long.
constexpr int refocusDelayMS = 50;
constexpr int mostAttempts = 10;
constexpr int calmMS = 3000;
/// While another program's menu holds the keyboard.
constexpr int grabAgainMS = 100;

xcb_window_t idOf(const QWidget& window) {
    const QWindow* handle = window.windowHandle();
    return handle && handle->handle() ? static_cast<xcb_window_t>(handle->winId()) : XCB_NONE;
}

xcb_window_t makeAnchor(xcb_connection_t* connection, xcb_window_t root) {
    const xcb_window_t window = xcb_generate_id(connection);
    const std::uint32_t values[] = {1, XCB_EVENT_MASK_FOCUS_CHANGE};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    return window;
}

} // namespace

FrontKeyboard::FrontKeyboard(xcb_connection_t* toolkit)
    : connection(toolkit), root(rootWindow(toolkit)), anchor(makeAnchor(toolkit, root)) {
    for (QTimer* timer : {&grabAgain, &refocusSoon, &calm})
        timer->setSingleShot(true);
    grabAgain.setInterval(grabAgainMS);
    refocusSoon.setInterval(refocusDelayMS);
    calm.setInterval(calmMS);
    connect(&grabAgain, &QTimer::timeout, this, &FrontKeyboard::grab);
    connect(&refocusSoon, &QTimer::timeout, this, &FrontKeyboard::refocus);
    connect(&calm, &QTimer::timeout, this, [this] {
        attempts = 0;
        refocus();
    });
}

void FrontKeyboard::begin(const xcb_get_input_focus_reply_t& before) {
    if (std::exchange(begun, true))
        return;
    focusBefore = before.focus;
    revertBefore = before.revert_to;
    if (activeProperty == XCB_NONE)
        activeProperty = internAtom(connection, "_NET_ACTIVE_WINDOW");
    activeBefore = activeWindow();
    xcb_map_window(connection, anchor);
}

void FrontKeyboard::end() {
    order.clear();
    if (!std::exchange(begun, false))
        return;
    for (QTimer* timer : {&grabAgain, &refocusSoon, &calm})
        timer->stop();
    held = false;
    attempts = 0;
    xcb_ungrab_keyboard(connection, XCB_CURRENT_TIME);
    // Whoever got the focus meanwhile was not asked for by the user, who worked with our windows.
    if (!std::exchange(isCovered, false))
        giveBack();
    xcb_unmap_window(connection, anchor);
    xcb_flush(connection);
}

void FrontKeyboard::giveBack() {
    const xcb_window_t active = activeWindow();
    if (setFocus(focusBefore, revertBefore)) {
        // A window manager that chose another one meanwhile would go back to that.
        if (activeBefore != XCB_NONE && active != XCB_NONE && active != activeBefore)
            askForActivation(activeBefore);
        return;
    }
    // It has gone: the window manager has chosen another since.
    if (active == XCB_NONE || !setFocus(active))
        setFocus(XCB_INPUT_FOCUS_POINTER_ROOT);
}

void FrontKeyboard::askForActivation(xcb_window_t window) const {
    xcb_client_message_event_t request = {};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = window;
    request.type = activeProperty;
    // From the user's own tool, as a taskbar is, not from the window itself, which could be refused.
    constexpr std::uint32_t pager = 2;
    request.data.data32[0] = pager;
    request.data.data32[1] = latestTime;
    xcb_send_event(connection, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&request));
}

void FrontKeyboard::give(QWidget& window) {
    std::erase(order, &window);
    order.emplace_back(&window);
    attempts = 0;
    focusFront();
}

void FrontKeyboard::pressed(QWidget& window) {
    if (front() != &window || focusedWindow() != idOf(window))
        give(window);
}

void FrontKeyboard::drop(const QWidget& window) {
    const bool wasFront = front() == &window;
    std::erase(order, &window);
    if (wasFront)
        focusFront();
}

void FrontKeyboard::setCovered(bool covered) {
    if (!begun || std::exchange(isCovered, covered) == covered)
        return;
    if (!covered)
        return focusFront();
    held = false;
    xcb_ungrab_keyboard(connection, XCB_CURRENT_TIME);
    xcb_flush(connection);
}

QWidget* FrontKeyboard::front() const {
    const auto found = std::ranges::find_if(order.rbegin(), order.rend(),
                                            [](const auto& window) { return window && idOf(*window); });
    return found != order.rend() ? found->data() : nullptr;
}

bool FrontKeyboard::has(const QWidget& window) const {
    const xcb_window_t id = idOf(window);
    return id != XCB_NONE && ((held && front() == &window) || focusedWindow() == id);
}

void FrontKeyboard::focusFront() {
    QWidget* window = front();
    if (!window || isCovered)
        return;
    window->activateWindow();
    setFocus(idOf(*window));
    if (begun)
        grab();
    // The toolkit may still take a window it has hidden for the focused one: it would then not notice
    // that the keyboard came back, and no widget in it would have the focus.
    if (window->windowHandle() == QGuiApplication::focusWindow() && QApplication::activeWindow() != window)
        QApplication::setActiveWindow(window);
}

void FrontKeyboard::refocus() {
    const QWidget* window = front();
    if (!window || !holdsKeys() || attempts >= mostAttempts || focusedWindow() == idOf(*window))
        return;
    ++attempts;
    calm.start();
    setFocus(idOf(*window));
}

void FrontKeyboard::grab() {
    if (!holdsKeys())
        return;
    const auto reply = xcbReply<xcb_grab_keyboard_reply>(
        connection,
        xcb_grab_keyboard(connection, 1, anchor, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    held = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    if (!held)
        grabAgain.start();
}

bool FrontKeyboard::filter(xcb_generic_event_t& event) {
    if (!begun)
        return false;
    switch (event.response_type & 0x7F) {
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE: {
        // Only when the focus is another program's.
        auto& key = reinterpret_cast<xcb_key_press_event_t&>(event);
        latestTime = key.time;
        if (const QWidget* window = front(); window && key.event == anchor)
            key.event = idOf(*window);
        return false;
    }
    case XCB_FOCUS_IN:
        handleFocusIn(reinterpret_cast<const xcb_focus_in_event_t&>(event));
        return false;
    case XCB_FOCUS_OUT:
        return handleFocusOut(reinterpret_cast<const xcb_focus_out_event_t&>(event));
    default:
        return false;
    }
}

void FrontKeyboard::handleFocusIn(const xcb_focus_in_event_t& event) {
    if (event.mode == XCB_NOTIFY_MODE_UNGRAB)
        return grab();
    const bool moved = event.mode != XCB_NOTIFY_MODE_GRAB && event.detail != XCB_NOTIFY_DETAIL_POINTER;
    // The toolkit gets to know it first.
    if (moved)
        QTimer::singleShot(0, this, [this, id = event.event] {
            QWidget* window = front();
            if (window && idOf(*window) == id && onReturned)
                onReturned(*window);
        });
}

bool FrontKeyboard::handleFocusOut(const xcb_focus_out_event_t& event) {
    // The toolkit's menus take the keyboard for themselves, and leave it to nobody.
    if (event.mode == XCB_NOTIFY_MODE_UNGRAB) {
        grab();
        return false;
    }
    const QWidget* window = front();
    if (!window || event.event != idOf(*window) || event.detail == XCB_NOTIFY_DETAIL_INFERIOR)
        return false;
    if (event.mode != XCB_NOTIFY_MODE_GRAB)
        refocusSoon.start();
    // The keys are still its own.
    return held && event.mode != XCB_NOTIFY_MODE_NORMAL;
}

bool FrontKeyboard::setFocus(xcb_window_t id, std::uint8_t revertTo) const {
    const auto cookie = xcb_set_input_focus_checked(connection, revertTo, id, XCB_CURRENT_TIME);
    return !XcbOwned<xcb_generic_error_t>(xcb_request_check(connection, cookie));
}

xcb_window_t FrontKeyboard::focusedWindow() const {
    const auto reply = xcbReply<xcb_get_input_focus_reply>(connection, xcb_get_input_focus(connection));
    return reply ? reply->focus : XCB_NONE;
}

xcb_window_t FrontKeyboard::activeWindow() const {
    const auto reply = xcbReply<xcb_get_property_reply>(
        connection, xcb_get_property(connection, 0, root, activeProperty, XCB_ATOM_WINDOW, 0, 1));
    return reply && reply->format == 32 && reply->value_len == 1
               ? *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()))
               : XCB_NONE;
}

#include "VistrelPlatform/X11/X11OverlayWindows.h"

#include "VistrelPlatform/X11/DialogEdge.h"
#include "VistrelPlatform/X11/WindowRedirection.h"

#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <xcb/xinput.h>

#include <algorithm>

namespace {

/// sRGB 0.3 grey.
constexpr std::uint32_t plainBackground = 0x4D4D4D;
/// Focus taken away by another program is taken back this long after, so often, until it stays this long.
constexpr int refocusDelayMS = 50;
constexpr int mostFocusAttempts = 10;
constexpr int focusCalmMS = 3000;

xcb_window_t idOf(const QWidget& window) {
    const QWindow* handle = window.windowHandle();
    return handle && handle->handle() ? static_cast<xcb_window_t>(handle->winId()) : XCB_NONE;
}

std::uint32_t ownEventMask(xcb_connection_t* connection, xcb_window_t window) {
    const auto attributes =
        xcbReply<xcb_get_window_attributes_reply>(connection, xcb_get_window_attributes(connection, window));
    return attributes ? attributes->your_event_mask : 0;
}

/// A frame extent of zero tells shadow-drawing window managers that the window does that itself.
void refuseShadow(xcb_connection_t* connection, xcb_window_t window) {
    const std::uint32_t none[4] = {};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window,
                        internAtom(connection, "_GTK_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 32, 4, none);
}

/// Windows of ours that a window manager manages, such as the settings, stand below every overlay.
bool liesBehindOverlays(xcb_window_t id) {
    const QWidgetList all = QApplication::topLevelWidgets();
    return std::ranges::any_of(all, [id](const QWidget* widget) {
        return widget->internalWinId() == id && widget->windowType() != Qt::Popup &&
               !widget->windowFlags().testFlag(Qt::X11BypassWindowManagerHint);
    });
}

} // namespace

X11OverlayWindows::X11OverlayWindows() : connection(toolkitConnection()), stacking(connection) {
    root = rootWindow(connection);
    xcb_prefetch_extension_data(connection, &xcb_input_id);
    rootEventMask = ownEventMask(connection, root);
    const xcb_query_extension_reply_t* input = xcb_get_extension_data(connection, &xcb_input_id);
    if (input && input->present)
        inputOpcode = input->major_opcode;
    restackSoon.setSingleShot(true);
    restackSoon.setInterval(0);
    connect(&restackSoon, &QTimer::timeout, this, &X11OverlayWindows::restoreStacking);
    refocusSoon.setSingleShot(true);
    refocusSoon.setInterval(refocusDelayMS);
    connect(&refocusSoon, &QTimer::timeout, this, &X11OverlayWindows::focusLost);
    focusCalm.setSingleShot(true);
    focusCalm.setInterval(focusCalmMS);
    connect(&focusCalm, &QTimer::timeout, this, [this] { focusAttempts = 0; });
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11OverlayWindows::~X11OverlayWindows() {
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

Qt::WindowFlags X11OverlayWindows::windowFlags() const {
    return Qt::Window | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint | Qt::NoDropShadowWindowHint;
}

void X11OverlayWindows::prepare(QWidget& window, const Screen& screen) {
    const QList<QScreen*> all = QGuiApplication::screens();
    const auto found =
        std::ranges::find_if(all, [&](const QScreen* candidate) { return candidate->name() == screen.name; });
    if (found != all.end())
        window.setGeometry((*found)->geometry());
    window.winId();
    const xcb_window_t id = idOf(window);
    window.windowHandle()->setProperty(overlayWindowProperty, true);
    window.windowHandle()->installEventFilter(this);
    if (!overlays.contains(&window)) {
        connect(&window, &QObject::destroyed, this, [this, key = &window] {
            overlays.erase(key);
            if (focusHolder == key)
                focusHolder = nullptr;
            watchOtherWindows();
        });
    }
    Overlay& overlay = overlays[&window];
    overlay.nativeRect = screen.nativeRect;
    const std::uint32_t mask = ownEventMask(connection, id) | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    xcb_change_window_attributes(connection, id, XCB_CW_EVENT_MASK, &mask);
    refuseShadow(connection, id);
    forceGeometry(id, overlay);
    xcb_flush(connection);
}

void X11OverlayWindows::forceGeometry(xcb_window_t id, const Overlay& overlay) const {
    // The toolkit's own rectangle is rounded to whole points.
    const QRect& rect = overlay.nativeRect;
    const std::uint32_t values[] = {
        static_cast<std::uint32_t>(rect.x()), static_cast<std::uint32_t>(rect.y()),
        static_cast<std::uint32_t>(rect.width()), static_cast<std::uint32_t>(rect.height())};
    xcb_configure_window(connection, id,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
}

void X11OverlayWindows::setFrozenPicture(QWidget& window, std::shared_ptr<FrozenPicture> picture) {
    const auto found = overlays.find(&window);
    if (found == overlays.end())
        return;
    Overlay& overlay = found->second;
    const PixelSize size{overlay.nativeRect.width(), overlay.nativeRect.height()};
    overlay.frozen = std::dynamic_pointer_cast<X11FrozenPicture>(std::move(picture));
    overlay.frozenDrawn = false;
    if (overlay.frozen && overlay.frozen->size() != size)
        overlay.frozen.reset();
    // Without a background the window begins with what the screen shows.
    const std::uint32_t none = XCB_BACK_PIXMAP_NONE;
    const bool isPlain = !overlay.frozen;
    xcb_change_window_attributes(connection, idOf(window), isPlain ? XCB_CW_BACK_PIXEL : XCB_CW_BACK_PIXMAP,
                                 isPlain ? &plainBackground : &none);
}

void X11OverlayWindows::show(const std::vector<QWidget*>& windows) {
    // Mapped before the toolkit does the same, which takes its time: the pictures are there already.
    for (QWidget* window : windows)
        map(*window);
    // Only then, as displays may overlap.
    for (QWidget* window : windows) {
        Overlay& overlay = overlays.at(window);
        if (overlay.frozen && !std::exchange(overlay.frozenDrawn, true))
            overlay.frozen->drawOn(connection, idOf(*window));
    }
    // The toolkit's turn takes a processor that the server and those who look on need now.
    xcbReply<xcb_get_input_focus_reply>(connection, xcb_get_input_focus(connection));
    watchOtherWindows();
    for (QWidget* window : windows) {
        window->show();
        forceGeometry(idOf(*window), overlays.at(window));
    }
    xcb_flush(connection);
}

void X11OverlayWindows::map(QWidget& window) {
    const auto found = overlays.find(&window);
    VISTREL_PRECONDITION(found != overlays.end(), "an overlay is prepared before it is shown");
    Overlay& overlay = found->second;
    const xcb_window_t id = idOf(window);
    overlay.shown = true;
    overlay.level = OverlayLevel::aboveEverything;
    forceGeometry(id, overlay);
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection, id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_map_window(connection, id);
}

void X11OverlayWindows::hide(QWidget& window) {
    if (const auto found = overlays.find(&window); found != overlays.end())
        found->second.shown = false;
    if (focusHolder == &window)
        focusHolder = nullptr;
    window.hide();
    watchOtherWindows();
    xcb_flush(connection);
}

void X11OverlayWindows::setLevel(QWidget& window, OverlayLevel level) {
    const auto found = overlays.find(&window);
    if (found == overlays.end())
        return;
    found->second.level = level;
    if (level == OverlayLevel::aboveEverything)
        restackSoon.start();
}

void X11OverlayWindows::watchOtherWindows() {
    const bool anyShown = std::ranges::any_of(overlays, [](const auto& row) { return row.second.shown; });
    std::uint32_t mask = rootEventMask;
    if (anyShown)
        mask |= XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
}

void X11OverlayWindows::restoreStacking() {
    for (const auto& [window, overlay] : overlays)
        if (overlay.shown && overlay.level == OverlayLevel::aboveEverything)
            stacking.restore(idOf(*window), overlay.nativeRect);
}

bool X11OverlayWindows::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Expose) {
        // The toolkit paints while it handles this; afterwards the paint has reached the server.
        for (const auto& row : overlays)
            if (row.first->windowHandle() == watched && row.second.shown)
                QTimer::singleShot(0, row.first, [this, window = row.first] { dropBackground(*window); });
    } else if (event->type() == QEvent::Show) {
        auto* dialog = qobject_cast<QWidget*>(watched);
        if (dialog && !overlays.contains(dialog))
            QTimer::singleShot(0, dialog, [this, dialog] {
                dialog->raise();
                takeFocus(*dialog);
            });
    }
    return false;
}

void X11OverlayWindows::dropBackground(QWidget& window) {
    // From now on a part that another window uncovered keeps its old pixels until the toolkit paints them,
    // instead of flashing the dimmed picture.
    const auto found = overlays.find(&window);
    if (found == overlays.end() || !found->second.shown || !window.windowHandle()->isExposed())
        return;
    const std::uint32_t none = XCB_BACK_PIXMAP_NONE;
    xcb_change_window_attributes(connection, idOf(window), XCB_CW_BACK_PIXMAP, &none);
}

void X11OverlayWindows::takeFocus(QWidget& window) {
    if (overlays.contains(&window))
        focusHolder = &window;
    window.activateWindow();
    const xcb_window_t id = idOf(window);
    if (!setFocus(id, latestTime) || focusedWindow() != id)
        setFocus(id, XCB_CURRENT_TIME);
    // The toolkit may still take a window it has hidden for the focused one: it would then not notice
    // that the keyboard came back, and no widget in it would have the focus.
    if (window.windowHandle() == QGuiApplication::focusWindow() && QApplication::activeWindow() != &window)
        QApplication::setActiveWindow(&window);
}

bool X11OverlayWindows::setFocus(xcb_window_t id, xcb_timestamp_t time) const {
    const auto cookie = xcb_set_input_focus_checked(connection, XCB_INPUT_FOCUS_PARENT, id, time);
    return !XcbOwned<xcb_generic_error_t>(xcb_request_check(connection, cookie));
}

xcb_window_t X11OverlayWindows::focusedWindow() const {
    const auto reply = xcbReply<xcb_get_input_focus_reply>(connection, xcb_get_input_focus(connection));
    return reply ? reply->focus : XCB_NONE;
}

bool X11OverlayWindows::hasKeyboardFocus(const QWidget& window) const {
    const xcb_window_t id = idOf(window);
    return id != XCB_NONE && focusedWindow() == id;
}

void X11OverlayWindows::focusReturned(xcb_window_t id) {
    const bool isOverlay = std::ranges::any_of(
        overlays, [id](const auto& row) { return row.second.shown && idOf(*row.first) == id; });
    // The toolkit gets to know it first.
    if (isOverlay)
        QTimer::singleShot(0, this, [this] {
            if (onKeyboardFocus)
                onKeyboardFocus();
        });
}

void X11OverlayWindows::focusLost() {
    const auto found = overlays.find(focusHolder);
    if (found == overlays.end() || !found->second.shown ||
        found->second.level != OverlayLevel::aboveEverything)
        return;
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const TopLevelWindows::Client ours{setup->resource_id_base, setup->resource_id_mask};
    const xcb_window_t focused = focusedWindow();
    if ((ours.owns(focused) && !liesBehindOverlays(focused)) || focusAttempts >= mostFocusAttempts)
        return;
    ++focusAttempts;
    focusCalm.start();
    setFocus(idOf(*focusHolder), XCB_CURRENT_TIME);
}

void X11OverlayWindows::prepareDialog(QWidget& dialog) {
    // A managed dialog would lie below the overlay whatever its level is.
    dialog.setWindowFlag(Qt::X11BypassWindowManagerHint);
    DialogEdge::addTo(dialog);
    dialog.installEventFilter(this);
}

void X11OverlayWindows::noticeTime(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
    case XCB_MOTION_NOTIFY:
        latestTime = reinterpret_cast<const xcb_key_press_event_t&>(event).time;
        break;
    case XCB_GE_GENERIC:
        // Every event of the input extension begins alike.
        if (inputOpcode != 0 &&
            reinterpret_cast<const xcb_ge_generic_event_t&>(event).extension == inputOpcode)
            latestTime = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event).time;
        break;
    default:
        break;
    }
}

bool X11OverlayWindows::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (type != "xcb_generic_event_t")
        return false;
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    noticeTime(event);
    switch (event.response_type & 0x7F) {
    case XCB_VISIBILITY_NOTIFY:
        if (reinterpret_cast<const xcb_visibility_notify_event_t&>(event).state != XCB_VISIBILITY_UNOBSCURED)
            restackSoon.start();
        break;
    case XCB_MAP_NOTIFY:
        if (reinterpret_cast<const xcb_map_notify_event_t&>(event).event == root)
            restackSoon.start();
        break;
    case XCB_CONFIGURE_NOTIFY:
        if (reinterpret_cast<const xcb_configure_notify_event_t&>(event).event == root)
            restackSoon.start();
        break;
    case XCB_FOCUS_IN: {
        const auto& focus = reinterpret_cast<const xcb_focus_in_event_t&>(event);
        if (focus.mode == XCB_NOTIFY_MODE_NORMAL && focus.detail != XCB_NOTIFY_DETAIL_POINTER)
            focusReturned(focus.event);
        break;
    }
    case XCB_FOCUS_OUT: {
        const auto& focus = reinterpret_cast<const xcb_focus_out_event_t&>(event);
        const bool ours = focusHolder && focus.event == idOf(*focusHolder);
        // A grab comes and goes; an inferior is still ours.
        if (ours && focus.mode != XCB_NOTIFY_MODE_GRAB && focus.detail != XCB_NOTIFY_DETAIL_INFERIOR)
            refocusSoon.start();
        break;
    }
    default:
        break;
    }
    return false;
}

#include "VistrelPlatform/X11/X11OverlayWindows.h"

#include "VistrelPlatform/X11/DialogEdge.h"
#include "VistrelPlatform/X11/DialogTitle.h"
#include "VistrelPlatform/X11/WindowRedirection.h"

#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace {

/// sRGB 0.3 grey.
constexpr std::uint32_t plainBackground = 0x4D4D4D;

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

/// Meanwhile windows that go from under the pointer are no movement of it, which some window managers would
/// have the keyboard follow.
class PointerStandsStill {
public:
    PointerStandsStill(xcb_connection_t* xcb, xcb_window_t root) : connection(xcb) {
        const auto cookie =
            xcb_grab_pointer_unchecked(connection, 0, root, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                       XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
        xcb_discard_reply(connection, cookie.sequence);
    }
    PointerStandsStill(const PointerStandsStill&) = delete;
    PointerStandsStill& operator=(const PointerStandsStill&) = delete;
    ~PointerStandsStill() {
        xcb_ungrab_pointer(connection, XCB_CURRENT_TIME);
        xcb_flush(connection);
    }

private:
    xcb_connection_t* connection;
};

} // namespace

X11OverlayWindows::X11OverlayWindows()
    : connection(toolkitConnection()), stacking(connection), keyboard(connection) {
    root = rootWindow(connection);
    rootEventMask = ownEventMask(connection, root);
    restackSoon.setSingleShot(true);
    restackSoon.setInterval(0);
    connect(&restackSoon, &QTimer::timeout, this, &X11OverlayWindows::restoreStacking);
    keyboard.onReturned = [this](QWidget& window) {
        if (onKeyboardFocus && overlays.contains(&window))
            onKeyboardFocus();
    };
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
            overlaysChanged();
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
    const auto focus = xcbReply<xcb_get_input_focus_reply>(connection, xcb_get_input_focus(connection));
    if (focus)
        keyboard.begin(*focus);
    overlaysChanged();
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
    // First, so that it goes from this window to the next without a moment in which it is nobody's.
    keyboard.drop(window);
    overlaysChanged();
    const PointerStandsStill still(connection, root);
    window.hide();
}

void X11OverlayWindows::setLevel(QWidget& window, OverlayLevel level) {
    const auto found = overlays.find(&window);
    if (found == overlays.end())
        return;
    found->second.level = level;
    if (level == OverlayLevel::aboveEverything)
        restackSoon.start();
}

void X11OverlayWindows::overlaysChanged() {
    const bool anyShown = std::ranges::any_of(overlays, [](const auto& row) { return row.second.shown; });
    std::uint32_t mask = rootEventMask;
    if (anyShown)
        mask |= XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
    if (!anyShown)
        keyboard.end();
}

void X11OverlayWindows::restoreStacking() {
    bool anyInFront = false;
    for (const auto& [window, overlay] : overlays) {
        if (!overlay.shown)
            continue;
        anyInFront = anyInFront || !stacking.isCovered(idOf(*window), overlay.nativeRect);
        if (overlay.level == OverlayLevel::aboveEverything)
            stacking.restore(idOf(*window), overlay.nativeRect);
    }
    keyboard.setCovered(!anyInFront);
}

bool X11OverlayWindows::eventFilter(QObject* watched, QEvent* event) {
    auto* dialog = qobject_cast<QWidget*>(watched);
    switch (event->type()) {
    case QEvent::Expose:
        // The toolkit paints while it handles this; afterwards the paint has reached the server.
        for (const auto& row : overlays)
            if (row.first->windowHandle() == watched && row.second.shown)
                QTimer::singleShot(0, row.first, [this, window = row.first] { dropBackground(*window); });
        break;
    case QEvent::MouseButtonPress:
        // No window manager gives these windows the keyboard on a click, so the click itself takes it.
        if (QWidget* window = dialog ? nullptr : widgetOf(*watched))
            keyboard.pressed(*window);
        break;
    case QEvent::Show:
        if (dialog) {
            // It is not on the screen yet.
            keyboard.give(*dialog);
            QTimer::singleShot(0, dialog, [this, dialog] { bringForward(*dialog); });
        }
        break;
    case QEvent::Hide:
        if (dialog)
            keyboard.drop(*dialog);
        break;
    default:
        break;
    }
    return false;
}

QWidget* X11OverlayWindows::widgetOf(const QObject& handle) const {
    const QWidgetList all = QApplication::topLevelWidgets();
    const auto found = std::ranges::find(all, &handle, &QWidget::windowHandle);
    return found != all.end() ? *found : nullptr;
}

void X11OverlayWindows::bringForward(QWidget& dialog) {
    if (!dialog.isVisible())
        return;
    dialog.windowHandle()->installEventFilter(this);
    dialog.raise();
    keyboard.give(dialog);
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
    keyboard.give(window);
}

bool X11OverlayWindows::hasKeyboardFocus(const QWidget& window) const {
    return keyboard.has(window);
}

void X11OverlayWindows::prepareDialog(QWidget& dialog) {
    // A managed dialog would lie below the overlay whatever its level is.
    dialog.setWindowFlag(Qt::X11BypassWindowManagerHint);
    DialogTitle::addTo(dialog);
    DialogEdge::addTo(dialog);
    dialog.installEventFilter(this);
}

bool X11OverlayWindows::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (type != "xcb_generic_event_t")
        return false;
    auto& event = *static_cast<xcb_generic_event_t*>(message);
    switch (event.response_type & 0x7F) {
    case XCB_VISIBILITY_NOTIFY:
        if (reinterpret_cast<const xcb_visibility_notify_event_t&>(event).state != XCB_VISIBILITY_UNOBSCURED)
            restackSoon.start();
        break;
    // All three begin alike.
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
        if (reinterpret_cast<const xcb_map_notify_event_t&>(event).event == root)
            restackSoon.start();
        break;
    default:
        break;
    }
    return keyboard.filter(event);
}

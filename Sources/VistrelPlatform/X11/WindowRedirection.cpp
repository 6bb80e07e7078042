#include "VistrelPlatform/X11/WindowRedirection.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>

#include <xcb/composite.h>

#include <algorithm>

namespace {

/// A closed menu's place is restored from the kept contents if a capture follows at once.
constexpr int lingerMS = 1000;

bool isOverlay(const QWindow& window) {
    return window.property(overlayWindowProperty).toBool();
}

/// The icon that an XEmbed tray holds is a top-level window to the toolkit, but lies inside the tray's.
bool isTrayIcon(const QWindow& window) {
    return window.objectName().startsWith(QLatin1String("QSystemTrayIconSys"));
}

} // namespace

WindowRedirection::WindowRedirection(std::shared_ptr<X11Connection> server) : connection(std::move(server)) {
    lingering.setSingleShot(true);
    lingering.setInterval(lingerMS);
    connect(&lingering, &QTimer::timeout, this, &WindowRedirection::end);
    qGuiApp->installEventFilter(this);
    if (anyWindowShown(nullptr))
        begin();
}

WindowRedirection::~WindowRedirection() {
    end();
}

bool WindowRedirection::eventFilter(QObject* watched, QEvent* event) {
    if (!watched->isWindowType() || (event->type() != QEvent::Show && event->type() != QEvent::Hide))
        return false;
    const auto& window = *static_cast<const QWindow*>(watched);
    if (!window.isTopLevel() || isOverlay(window) || isTrayIcon(window))
        return false;
    if (event->type() == QEvent::Show) {
        lingering.stop();
        // Over a frozen picture nothing is captured, so nothing needs to be kept.
        if (!active && !overlayShown())
            begin();
    } else if (active && !anyWindowShown(&window)) {
        lingering.start();
    }
    return false;
}

void WindowRedirection::begin() {
    if (compositorRuns())
        return;
    xcb_composite_redirect_subwindows(connection->get(), connection->root(),
                                      XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    // Done before the toolkit's connection maps the window.
    active = connection->synchronize();
}

void WindowRedirection::end() {
    if (!std::exchange(active, false))
        return;
    xcb_composite_unredirect_subwindows(connection->get(), connection->root(),
                                        XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_flush(connection->get());
}

bool WindowRedirection::compositorRuns() const {
    const auto owner = xcbReply<xcb_get_selection_owner_reply>(
        connection->get(), xcb_get_selection_owner(connection->get(), connection->atoms().compositor));
    return owner && owner->owner != XCB_NONE;
}

bool WindowRedirection::overlayShown() {
    return std::ranges::any_of(QGuiApplication::topLevelWindows(), [](const QWindow* window) {
        return window->isVisible() && isOverlay(*window);
    });
}

bool WindowRedirection::anyWindowShown(const QWindow* except) {
    return std::ranges::any_of(QGuiApplication::topLevelWindows(), [&](const QWindow* window) {
        return window != except && window->isVisible() && !isOverlay(*window) && !isTrayIcon(*window);
    });
}

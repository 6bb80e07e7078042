#include "VistrelPlatform/X11/X11ScreenList.h"

#include "VistrelPlatform/X11/X11Monitors.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace {
/// A plugged monitor causes several changes in a row; this long without another one it has settled.
constexpr int quietMS = 80;
} // namespace

X11ScreenList::X11ScreenList() {
    settled.setSingleShot(true);
    settled.setInterval(quietMS);
    connect(&settled, &QTimer::timeout, this, &X11ScreenList::announceChange);
    const auto changing = [this] { settled.start(); };
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        watch(screen);
        replaced();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &X11ScreenList::replaced);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, changing);
    for (QScreen* screen : QGuiApplication::screens())
        watch(screen);
    announced = screens();
}

void X11ScreenList::watch(QScreen* screen) {
    const auto changing = [this] { settled.start(); };
    connect(screen, &QScreen::geometryChanged, this, changing);
    connect(screen, &QScreen::availableGeometryChanged, this, changing);
    connect(screen, &QScreen::physicalDotsPerInchChanged, this, changing);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, changing);
}

void X11ScreenList::replaced() {
    windowsMoved = true;
    settled.start();
}

void X11ScreenList::announceChange() {
    std::vector<Screen> current = screens();
    if (current == announced && !windowsMoved)
        return;
    windowsMoved = false;
    announced = std::move(current);
    Q_EMIT changed();
}

QString X11ScreenList::monitorName(std::uint32_t atom) const {
    if (const auto known = monitorNames.find(atom); known != monitorNames.end())
        return known->second;
    xcb_connection_t* connection = toolkitConnection();
    const auto reply = xcbReply<xcb_get_atom_name_reply>(connection, xcb_get_atom_name(connection, atom));
    if (!reply)
        return {};
    QString name =
        QString::fromUtf8(xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get()));
    return monitorNames.emplace(atom, std::move(name)).first->second;
}

std::vector<Screen> X11ScreenList::screens() const {
    std::vector<X11Monitor> monitors;
    if (xcb_connection_t* connection = toolkitConnection())
        monitors =
            receiveMonitors(connection, requestMonitors(connection)).value_or(std::vector<X11Monitor>());
    std::vector<Screen> result;
    for (const QScreen* screen : QGuiApplication::screens()) {
        Screen entry;
        entry.name = screen->name();
        entry.scale = screen->devicePixelRatio();
        const auto monitor = std::ranges::find_if(
            monitors, [&](const X11Monitor& row) { return monitorName(row.name) == entry.name; });
        if (monitor != monitors.end()) {
            entry.displayID = monitor->name;
            entry.nativeRect = monitor->rect;
        } else {
            entry.nativeRect = QRect(screen->geometry().topLeft(),
                                     (QSizeF(screen->geometry().size()) * entry.scale).toSize());
        }
        result.push_back(std::move(entry));
    }
    return result;
}

QPoint X11ScreenList::pointerPosition() const {
    xcb_connection_t* connection = toolkitConnection();
    if (!connection)
        return {};
    const auto reply =
        xcbReply<xcb_query_pointer_reply>(connection, xcb_query_pointer(connection, rootWindow(connection)));
    return reply ? QPoint(reply->root_x, reply->root_y) : QPoint();
}

QScreen* X11ScreenList::toolkitScreen(const Screen& screen) const {
    const QList<QScreen*> all = QGuiApplication::screens();
    const auto found =
        std::ranges::find_if(all, [&](const QScreen* candidate) { return candidate->name() == screen.name; });
    return found == all.end() ? nullptr : *found;
}

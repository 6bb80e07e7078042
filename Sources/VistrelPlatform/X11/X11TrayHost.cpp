#include "VistrelPlatform/X11/X11TrayHost.h"

#include "VistrelPlatform/X11/Xcb.h"

#include <QCoreApplication>

#include <xcb/xfixes.h>

namespace {

constexpr std::uint8_t sentMask = 0x7f;

/// The selection that the panel of the default X screen owns.
xcb_atom_t traySelection(xcb_connection_t* connection) {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen))
        std::free(host);
    return internAtom(connection, QByteArray("_NET_SYSTEM_TRAY_S" + QByteArray::number(screen)).constData());
}

} // namespace

X11TrayHost::X11TrayHost() {
    xcb_connection_t* connection = toolkitConnection();
    if (!connection)
        return;
    const xcb_query_extension_reply_t* fixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    selection = traySelection(connection);
    if (!fixes || !fixes->present || selection == XCB_NONE)
        return;
    notification = static_cast<std::uint8_t>(fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    const auto version = xcb_xfixes_query_version(connection, XCB_XFIXES_MAJOR_VERSION, 0);
    xcb_xfixes_select_selection_input(connection, rootWindow(connection), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    // Asked after the watching began, so that no change falls in between.
    const auto owner =
        xcbReply<xcb_get_selection_owner_reply>(connection, xcb_get_selection_owner(connection, selection));
    xcb_discard_reply(connection, version.sequence);
    present = owner && owner->owner != XCB_NONE;
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11TrayHost::~X11TrayHost() {
    if (QCoreApplication* application = QCoreApplication::instance())
        application->removeNativeEventFilter(this);
}

bool X11TrayHost::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & sentMask) != notification)
        return false;
    const auto* change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(event);
    if (change->selection != selection)
        return false;
    const bool now =
        change->subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER && change->owner != XCB_NONE;
    if (std::exchange(present, now) != now)
        Q_EMIT changed();
    return false;
}

#include "VistrelPlatform/X11/Xcb.h"

#include <QGuiApplication>

#include <cstring>

namespace {

QString faultText(WindowSystemFault fault) {
    switch (fault) {
    case WindowSystemFault::connectionLost:
        return QStringLiteral("The connection to the window system was lost.");
    case WindowSystemFault::displayMissing:
        return QStringLiteral("The display is no longer connected.");
    case WindowSystemFault::pixelFormat:
        return QStringLiteral("The display’s color format is not supported.");
    case WindowSystemFault::noMemory:
        return QStringLiteral("There is not enough memory for a picture of the display.");
    case WindowSystemFault::shortReply:
        return QStringLiteral("The window system returned an incomplete picture.");
    }
    return {};
}

} // namespace

Error windowSystemError(WindowSystemFault fault) {
    return {ErrorDomain::windowSystem, static_cast<int>(fault), faultText(fault)};
}

Error windowSystemError(const xcb_generic_error_t* error) {
    if (!error)
        return windowSystemError(WindowSystemFault::connectionLost);
    return {ErrorDomain::windowSystem, error->error_code,
            QStringLiteral("The window system refused a request (error %1).").arg(error->error_code)};
}

xcb_connection_t* toolkitConnection() {
    if (!qGuiApp)
        return nullptr;
    const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return native ? native->connection() : nullptr;
}

xcb_window_t rootWindow(xcb_connection_t* connection) {
    const xcb_setup_t* setup = xcb_get_setup(connection);
    return setup ? xcb_setup_roots_iterator(setup).data->root : XCB_NONE;
}

xcb_atom_t internAtom(xcb_connection_t* connection, const char* name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const auto reply = xcbReply<xcb_intern_atom_reply>(connection, cookie);
    return reply ? reply->atom : XCB_NONE;
}

#include "VistrelPlatform/Freedesktop/SessionBus.h"

#include <QByteArray>

#include <unistd.h>

namespace {

constexpr const char* address = "DBUS_SESSION_BUS_ADDRESS";

} // namespace

void SessionBus::neverLaunch() {
    if (!qEnvironmentVariableIsEmpty(address))
        return;
    QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    if (folder.isEmpty())
        folder = "/run/user/" + QByteArray::number(::getuid());
    // Signs that an address may hold as they are; all others are written as numbers.
    qputenv(address, "unix:path=" + (folder + "/bus").toPercentEncoding("/.\\*-_", "~"));
}

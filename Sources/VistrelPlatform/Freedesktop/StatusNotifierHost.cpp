#include "VistrelPlatform/Freedesktop/StatusNotifierHost.h"

#include "VistrelPlatform/Freedesktop/BusAnswer.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

namespace {

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

} // namespace

StatusNotifierHost::StatusNotifierHost(const QDBusConnection& connection) : bus(connection) {
    if (!bus.isConnected())
        return;
    auto* services = new QDBusServiceWatcher(
        watcherService, bus,
        QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration, this);
    connect(services, &QDBusServiceWatcher::serviceRegistered, this, &StatusNotifierHost::ask);
    connect(services, &QDBusServiceWatcher::serviceUnregistered, this, [this] { setPresent(false); });
    for (const QString& signal :
         {QStringLiteral("StatusNotifierHostRegistered"), QStringLiteral("StatusNotifierHostUnregistered")})
        bus.connect(watcherService, watcherPath, watcherService, signal, this, SLOT(ask()));
    ask();
}

void StatusNotifierHost::ask() {
    QDBusMessage question = QDBusMessage::createMethodCall(watcherService, watcherPath,
                                                           QStringLiteral("org.freedesktop.DBus.Properties"),
                                                           QStringLiteral("Get"));
    question << watcherService << QStringLiteral("IsStatusNotifierHostRegistered");
    question.setAutoStartService(false);
    whenAnswered(bus, question, this, [this](const QDBusReply<QDBusVariant>& reply) {
        setPresent(reply.isValid() && reply.value().variant().toBool());
    });
}

void StatusNotifierHost::setPresent(bool isPresent) {
    if (present == isPresent)
        return;
    present = isPresent;
    Q_EMIT changed();
}

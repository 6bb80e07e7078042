#include "VistrelPlatform/Freedesktop/BusAnswer.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>

void whenAnswered(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
                  std::function<void(const QDBusMessage&)> then, int patience) {
    const QDBusPendingCall pending =
        bus.isConnected() ? bus.asyncCall(call, patience)
                          : QDBusPendingCall::fromError(
                                QDBusError(QDBusError::Disconnected, QStringLiteral("There is no bus.")));
    auto* watcher = new QDBusPendingCallWatcher(pending, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, then = std::move(then)] {
        watcher->deleteLater();
        then(watcher->reply());
    });
}

#include "VistrelPlatform/Freedesktop/SharePortalRequest.h"

#include "VistrelPlatform/Freedesktop/BusAnswer.h"

#include <QDBusArgument>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QUuid>

namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");

} // namespace

SharePortalRequest::SharePortalRequest(QDBusConnection sessionBus, QObject* parent)
    : QObject(parent),
      bus(std::move(sessionBus)),
      token(QStringLiteral("vistrel_") + QUuid::createUuid().toString(QUuid::Id128)) {
    auto* watcher =
        new QDBusServiceWatcher(portalName, bus, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &SharePortalRequest::portalChanged);
}

void SharePortalRequest::call(const QString& interface, const QString& method, const QVariantList& arguments,
                              QVariantMap options) {
    // The portal names its request after the caller and the token, so its answer cannot come too early.
    QString sender = bus.baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    listen(QStringLiteral("%1/request/%2/%3").arg(portalPath, sender, token));

    options.insert(QStringLiteral("handle_token"), token);
    QDBusMessage message = QDBusMessage::createMethodCall(portalName, portalPath, interface, method);
    message.setArguments(arguments + QVariantList{options});
    whenAnswered(bus, message, this, [this](const QDBusReply<QDBusObjectPath>& reply) {
        if (!reply.isValid())
            answer(Answer::unavailable);
        else if (reply.value().path() != listening)
            listen(reply.value().path());
    });
}

void SharePortalRequest::listen(const QString& handle) {
    listening = handle;
    bus.connect(QString(), handle, QStringLiteral("org.freedesktop.portal.Request"),
                QStringLiteral("Response"), this, SLOT(response(QDBusMessage)));
}

void SharePortalRequest::response(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    const bool yes = !arguments.isEmpty() && arguments.first().toUInt() == 0;
    results = qdbus_cast<QVariantMap>(arguments.value(1));
    answer(yes ? Answer::yes : Answer::no);
}

void SharePortalRequest::portalChanged(const QString&, const QString& oldOwner, const QString& newOwner) {
    // A portal that went away in the middle will never answer.
    if (!oldOwner.isEmpty() && newOwner.isEmpty())
        answer(Answer::no);
}

void SharePortalRequest::answer(Answer answer) {
    const auto report = std::move(onAnswer);
    onAnswer = nullptr;
    if (report)
        report(answer);
}

#include "VistrelPlatform/Freedesktop/ShareObexTransfer.h"

#include "VistrelPlatform/Freedesktop/BusAnswer.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusServiceWatcher>

namespace {

const QString obexService = QStringLiteral("org.bluez.obex");
const QString clientPath = QStringLiteral("/org/bluez/obex");
const QString clientInterface = QStringLiteral("org.bluez.obex.Client1");
const QString transferInterface = QStringLiteral("org.bluez.obex.Transfer1");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
/// The device may ask its user before it answers.
constexpr int answerTimeout = 120000;

} // namespace

ShareObexTransfer::ShareObexTransfer(QDBusConnection sessionBus, std::shared_ptr<SharePictureFile> picture,
                                     ShareServices::Completion report, QObject* parent)
    : QObject(parent), bus(std::move(sessionBus)), file(std::move(picture)), completion(std::move(report)) {
    auto* watcher =
        new QDBusServiceWatcher(obexService, bus, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &ShareObexTransfer::serviceChanged);
    bus.connect(obexService, QString(), propertiesInterface, QStringLiteral("PropertiesChanged"), this,
                SLOT(transferChanged(QDBusMessage)));
}

void ShareObexTransfer::start(const QString& address, const QString& adapterAddress) {
    QVariantMap arguments{{QStringLiteral("Target"), QStringLiteral("opp")}};
    if (!adapterAddress.isEmpty())
        arguments.insert(QStringLiteral("Source"), adapterAddress);
    QDBusMessage call = QDBusMessage::createMethodCall(obexService, clientPath, clientInterface,
                                                       QStringLiteral("CreateSession"));
    call << address << arguments;
    whenAnswered(
        bus, call, this,
        [this](const QDBusReply<QDBusObjectPath>& reply) {
            if (!reply.isValid()) {
                finish(false);
                return;
            }
            session = reply.value().path();
            send();
        },
        answerTimeout);
}

void ShareObexTransfer::send() {
    QDBusMessage call = QDBusMessage::createMethodCall(
        obexService, session, QStringLiteral("org.bluez.obex.ObjectPush1"), QStringLiteral("SendFile"));
    call << file->path();
    whenAnswered(
        bus, call, this, [this](const QDBusMessage& reply) { sent(reply); }, answerTimeout);
}

void ShareObexTransfer::sent(const QDBusMessage& reply) {
    const QVariantList arguments = reply.arguments();
    if (reply.type() != QDBusMessage::ReplyMessage || arguments.size() < 2) {
        finish(false);
        return;
    }
    transfer = arguments.at(0).value<QDBusObjectPath>().path();
    const QVariantMap properties = qdbus_cast<QVariantMap>(arguments.at(1));
    statusChanged(properties.value(QStringLiteral("Status")).toString());
    statusChanged(earlyStatus.value(transfer));
}

void ShareObexTransfer::transferChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (arguments.size() < 2 || arguments.at(0).toString() != transferInterface)
        return;
    const QVariantMap changed = qdbus_cast<QVariantMap>(arguments.at(1));
    const QString status = changed.value(QStringLiteral("Status")).toString();
    if (transfer.isEmpty())
        earlyStatus.insert(message.path(), status);
    else if (message.path() == transfer)
        statusChanged(status);
}

void ShareObexTransfer::statusChanged(const QString& status) {
    if (status == QLatin1String("complete"))
        finish(true);
    else if (status == QLatin1String("error"))
        finish(false);
}

void ShareObexTransfer::serviceChanged(const QString&, const QString& oldOwner, const QString& newOwner) {
    if (!oldOwner.isEmpty() && newOwner.isEmpty())
        finish(false);
}

void ShareObexTransfer::finish(bool shared) {
    if (finished)
        return;
    finished = true;
    if (!session.isEmpty()) {
        QDBusMessage call = QDBusMessage::createMethodCall(obexService, clientPath, clientInterface,
                                                           QStringLiteral("RemoveSession"));
        call << QVariant::fromValue(QDBusObjectPath(session));
        bus.send(call);
    }
    deleteLater();
    completion(shared);
}

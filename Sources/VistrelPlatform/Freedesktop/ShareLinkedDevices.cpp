#include "VistrelPlatform/Freedesktop/ShareLinkedDevices.h"

#include "VistrelPlatform/Freedesktop/BusAnswer.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QUrl>

namespace {

const QString daemonName = QStringLiteral("org.kde.kdeconnect");
const QString daemonPath = QStringLiteral("/modules/kdeconnect");

} // namespace

ShareLinkedDevices::ShareLinkedDevices(QDBusConnection sessionBus, ShareRetention& pictures)
    : bus(std::move(sessionBus)), retention(pictures) {
    qDBusRegisterMetaType<QMap<QString, QString>>();
}

void ShareLinkedDevices::refresh() {
    QDBusMessage call = QDBusMessage::createMethodCall(
        daemonName, daemonPath, QStringLiteral("org.kde.kdeconnect.daemon"), QStringLiteral("deviceNames"));
    call.setAutoStartService(false);
    const bool onlyReachable = true;
    const bool onlyPaired = true;
    call << onlyReachable << onlyPaired;
    whenAnswered(bus, call, this, [this](const QDBusMessage& reply) {
        names.clear();
        if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
            names = qdbus_cast<QMap<QString, QString>>(reply.arguments().first());
    });
}

std::vector<ShareService> ShareLinkedDevices::services() {
    std::vector<ShareService> found;
    for (auto device = names.cbegin(); device != names.cend(); ++device)
        found.push_back({device.key(), device.value(), QIcon::fromTheme(QStringLiteral("smartphone"))});
    return found;
}

void ShareLinkedDevices::perform(const QString& identifier, std::shared_ptr<SharePictureFile> file,
                                 ShareServices::Completion completion) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        daemonName, QStringLiteral("%1/devices/%2/share").arg(daemonPath, identifier),
        QStringLiteral("org.kde.kdeconnect.device.share"), QStringLiteral("shareUrl"));
    call << QString::fromUtf8(QUrl::fromLocalFile(file->path()).toEncoded());
    whenAnswered(bus, call, this,
                 [this, file = std::move(file), completion = std::move(completion)](const auto& reply) {
                     const bool accepted = reply.type() == QDBusMessage::ReplyMessage;
                     if (accepted)
                         retention.keep(file);
                     completion(accepted);
                 });
}

#include "VistrelPlatform/Freedesktop/ShareBluetooth.h"

#include "VistrelPlatform/Freedesktop/BusAnswer.h"
#include "VistrelPlatform/Freedesktop/ShareObexTransfer.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QTimer>

namespace {

/// Object path → interface → properties, as an object manager lists them.
using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, Interfaces>;

const QString objectPushProfile = QStringLiteral("00001105-0000-1000-8000-00805f9b34fb");

} // namespace

ShareBluetooth::ShareBluetooth(QDBusConnection system, QDBusConnection session)
    : systemBus(std::move(system)), sessionBus(std::move(session)) {
    qDBusRegisterMetaType<Interfaces>();
    qDBusRegisterMetaType<ManagedObjects>();
}

void ShareBluetooth::refresh() {
    QDBusMessage listing = QDBusMessage::createMethodCall(
        QStringLiteral("org.bluez"), QStringLiteral("/"),
        QStringLiteral("org.freedesktop.DBus.ObjectManager"), QStringLiteral("GetManagedObjects"));
    listing.setAutoStartService(false);
    whenAnswered(systemBus, listing, this, [this](const QDBusMessage& reply) { readDevices(reply); });

    const QDBusMessage names = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListActivatableNames"));
    whenAnswered(sessionBus, names, this, [this](const QDBusReply<QStringList>& reply) {
        canSend = reply.isValid() && reply.value().contains(QStringLiteral("org.bluez.obex"));
    });
}

void ShareBluetooth::readDevices(const QDBusMessage& reply) {
    devices.clear();
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return;
    const auto objects = qdbus_cast<ManagedObjects>(reply.arguments().first());
    for (auto object = objects.cbegin(); object != objects.cend(); ++object) {
        const QVariantMap device = object->value(QStringLiteral("org.bluez.Device1"));
        const bool accepts = device.value(QStringLiteral("UUIDs")).toStringList().contains(objectPushProfile);
        if (!accepts || !device.value(QStringLiteral("Paired")).toBool())
            continue;
        const auto path = device.value(QStringLiteral("Adapter")).value<QDBusObjectPath>();
        const QVariantMap adapter = objects.value(path).value(QStringLiteral("org.bluez.Adapter1"));
        if (!adapter.value(QStringLiteral("Powered")).toBool())
            continue;
        devices[object.key().path()] = {device.value(QStringLiteral("Alias")).toString(),
                                        device.value(QStringLiteral("Address")).toString(),
                                        adapter.value(QStringLiteral("Address")).toString(),
                                        device.value(QStringLiteral("Icon")).toString()};
    }
}

std::vector<ShareService> ShareBluetooth::services() {
    std::vector<ShareService> found;
    for (const auto& [path, device] : devices) {
        const QIcon icon = QIcon::fromTheme(device.icon, QIcon::fromTheme(QStringLiteral("bluetooth")));
        found.push_back({path, QStringLiteral("Bluetooth: %1").arg(device.name), icon, canSend});
    }
    return found;
}

void ShareBluetooth::perform(const QString& identifier, std::shared_ptr<SharePictureFile> file,
                             ShareServices::Completion completion) {
    const auto device = devices.find(identifier);
    if (device == devices.end()) {
        QTimer::singleShot(0, this, [completion = std::move(completion)] { completion(false); });
        return;
    }
    auto* transfer = new ShareObexTransfer(sessionBus, std::move(file), std::move(completion), this);
    transfer->start(device->second.address, device->second.adapterAddress);
}

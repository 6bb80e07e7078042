#pragma once

#include "VistrelPlatform/Freedesktop/ShareSupplier.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <map>

/// Paired Bluetooth devices that accept pushed files. The system bus tells which there are, the session's
/// object exchange service sends.
class ShareBluetooth : public QObject, public ShareSupplier {
public:
    ShareBluetooth(QDBusConnection system, QDBusConnection session);

    void refresh() override;
    std::vector<ShareService> services() override;
    void perform(const QString& identifier, std::shared_ptr<SharePictureFile> file,
                 ShareServices::Completion completion) override;

private:
    struct Device {
        QString name;
        QString address;
        QString adapterAddress;
        QString icon;
    };

    void readDevices(const QDBusMessage& reply);

    QDBusConnection systemBus;
    QDBusConnection sessionBus;
    std::map<QString, Device> devices; // by object path
    bool canSend = false;
};

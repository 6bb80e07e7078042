#pragma once

#include "VistrelPlatform/Freedesktop/ShareRetention.h"
#include "VistrelPlatform/Freedesktop/ShareSupplier.h"

#include <QDBusConnection>
#include <QMap>
#include <QObject>

/// Phones and computers that the desktop's device-linking daemon can reach at the moment.
class ShareLinkedDevices : public QObject, public ShareSupplier {
public:
    ShareLinkedDevices(QDBusConnection sessionBus, ShareRetention& pictures);

    void refresh() override;
    std::vector<ShareService> services() override;
    void perform(const QString& identifier, std::shared_ptr<SharePictureFile> file,
                 ShareServices::Completion completion) override;

private:
    QDBusConnection bus;
    ShareRetention& retention;
    QMap<QString, QString> names; // by device id
};

#pragma once

#include "VistrelPlatform/Freedesktop/ShareRetention.h"
#include "VistrelPlatform/Freedesktop/ShareSupplier.h"

#include <QDBusConnection>
#include <QObject>

/// Every installed application that opens PNG pictures, the preferred one first.
class ShareApplications : public QObject, public ShareSupplier {
public:
    ShareApplications(QDBusConnection sessionBus, ShareRetention& pictures);

    std::vector<ShareService> services() override;
    void perform(const QString& identifier, std::shared_ptr<SharePictureFile> file,
                 ShareServices::Completion completion) override;

    /// Whether some program stands ready to write mail.
    static bool mailProgramInstalled();

private:
    void activate(const QString& application, std::shared_ptr<SharePictureFile> file,
                  ShareServices::Completion completion);

    QDBusConnection bus;
    ShareRetention& retention;
};

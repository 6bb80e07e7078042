#pragma once

#include "VistrelPlatform/DesktopLibrary.h"
#include "VistrelPlatform/Freedesktop/ShareRetention.h"
#include "VistrelPlatform/Freedesktop/ShareSupplier.h"

#include <QDBusConnection>
#include <QObject>

/// Every installed application that opens PNG pictures, the preferred one first; none where the desktop's
/// library cannot be loaded.
class ShareApplications : public QObject, public ShareSupplier {
public:
    ShareApplications(QDBusConnection sessionBus, ShareRetention& pictures, DesktopLibrarySource source);

    std::vector<ShareService> services() override;
    void perform(const QString& identifier, std::shared_ptr<SharePictureFile> file,
                 ShareServices::Completion completion) override;

private:
    void activate(const QString& application, std::shared_ptr<SharePictureFile> file,
                  ShareServices::Completion completion);

    QDBusConnection bus;
    ShareRetention& retention;
    DesktopLibrarySource library;
};

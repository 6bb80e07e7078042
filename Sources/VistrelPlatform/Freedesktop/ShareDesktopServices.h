#pragma once

#include "VistrelPlatform/Freedesktop/ShareRetention.h"
#include "VistrelPlatform/Freedesktop/ShareSupplier.h"
#include "VistrelPlatform/ShareServices.h"

#include <QDBusConnection>
#include <QObject>

#include <map>
#include <memory>

/// What a freedesktop.org desktop offers for sharing: mail, then devices, then applications. Main thread.
class ShareDesktopServices : public QObject, public ShareServices {
public:
    ShareDesktopServices();
    ShareDesktopServices(QDBusConnection sessionBus, QDBusConnection systemBus);
    ~ShareDesktopServices() override;

    void refresh() override;
    std::vector<ShareService> services() override;
    void perform(const ShareService& service, const SharedPicture& picture, Completion completion) override;
    bool openExtensionSettings() override;
    void removeLeftovers() override;

private:
    ShareRetention retention;
    /// The name is put before each supplier's own identifiers.
    std::vector<std::pair<QString, std::unique_ptr<ShareSupplier>>> suppliers;
    std::unique_ptr<ShareProcess> settings;
};

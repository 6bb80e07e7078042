#pragma once

#include "VistrelPlatform/DesktopLibrary.h"
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
    using Bus = std::function<QDBusConnection()>;

    /// The user's own buses.
    explicit ShareDesktopServices(DesktopLibrarySource source);
    /// The buses are connected to, and the library is loaded, when they are first needed.
    ShareDesktopServices(Bus session, Bus system, DesktopLibrarySource source);
    ~ShareDesktopServices() override;

    void refresh() override;
    std::vector<ShareService> services() override;
    void perform(const ShareService& service, const SharedPicture& picture, Completion completion) override;
    bool openExtensionSettings() override;
    void removeLeftovers() override;

private:
    void makeSuppliers();

    Bus sessionBus;
    Bus systemBus;
    DesktopLibrarySource library;
    ShareRetention retention;
    /// The name is put before each supplier's own identifiers.
    std::vector<std::pair<QString, std::unique_ptr<ShareSupplier>>> suppliers;
    std::unique_ptr<ShareProcess> settings;
};

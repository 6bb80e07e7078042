#include "VistrelPlatform/Freedesktop/ShareDesktopServices.h"

#include "VistrelPlatform/Freedesktop/DefaultApplications.h"
#include "VistrelPlatform/Freedesktop/ShareApplications.h"
#include "VistrelPlatform/Freedesktop/ShareBluetooth.h"
#include "VistrelPlatform/Freedesktop/ShareLinkedDevices.h"
#include "VistrelPlatform/Freedesktop/ShareMail.h"

#include <QTimer>

namespace {

/// A settings program that ends sooner has passed the request to one that is open already; when that one
/// is closed cannot be seen.
constexpr std::chrono::seconds settingsHandOver{3};

} // namespace

ShareDesktopServices::ShareDesktopServices(DesktopLibrarySource source)
    : ShareDesktopServices([] { return QDBusConnection::sessionBus(); },
                           [] { return QDBusConnection::systemBus(); }, std::move(source)) {}

ShareDesktopServices::ShareDesktopServices(Bus session, Bus system, DesktopLibrarySource source)
    : sessionBus(std::move(session)), systemBus(std::move(system)), library(std::move(source)) {}

ShareDesktopServices::~ShareDesktopServices() = default;

void ShareDesktopServices::makeSuppliers() {
    if (!suppliers.empty())
        return;
    const QDBusConnection session = sessionBus();
    suppliers.emplace_back(QStringLiteral("mail:"), std::make_unique<ShareMail>(session, retention, library));
    suppliers.emplace_back(QStringLiteral("bluetooth:"),
                           std::make_unique<ShareBluetooth>(systemBus(), session));
    suppliers.emplace_back(QStringLiteral("device:"),
                           std::make_unique<ShareLinkedDevices>(session, retention));
    suppliers.emplace_back(QStringLiteral("application:"),
                           std::make_unique<ShareApplications>(session, retention, library));
}

void ShareDesktopServices::refresh() {
    makeSuppliers();
    for (const auto& [name, supplier] : suppliers)
        supplier->refresh();
}

std::vector<ShareService> ShareDesktopServices::services() {
    makeSuppliers();
    std::vector<ShareService> all;
    for (const auto& [name, supplier] : suppliers) {
        for (ShareService service : supplier->services()) {
            service.identifier.prepend(name);
            all.push_back(std::move(service));
        }
    }
    return all;
}

void ShareDesktopServices::perform(const ShareService& service, const SharedPicture& picture,
                                   Completion completion) {
    makeSuppliers();
    const auto file = SharePictureFile::write(picture);
    for (const auto& [name, supplier] : suppliers) {
        if (file && service.identifier.startsWith(name)) {
            supplier->perform(service.identifier.mid(name.size()), *file, std::move(completion));
            return;
        }
    }
    QTimer::singleShot(0, this, [completion = std::move(completion)] { completion(false); });
}

bool ShareDesktopServices::openExtensionSettings() {
    auto opened = DefaultApplications::openSettings();
    if (!opened)
        return false;
    settings = std::move(*opened);
    settings->onExit = [this](int) {
        const bool closed = settings->age() >= settingsHandOver;
        settings.release()->deleteLater();
        if (closed && onExtensionSettingsClosed)
            onExtensionSettingsClosed();
    };
    return true;
}

void ShareDesktopServices::removeLeftovers() {
    SharePictureFile::removeLeftovers();
}

#pragma once

#include "VistrelPlatform/DesktopLibrary.h"
#include "VistrelPlatform/Freedesktop/ShareRetention.h"
#include "VistrelPlatform/Freedesktop/ShareSupplier.h"

#include <QDBusConnection>
#include <QObject>

#include <chrono>

/// A new mail with the picture attached, in the user's mail program: through the desktop portal where there
/// is one, else through xdg-email.
class ShareMail : public QObject, public ShareSupplier {
public:
    struct Options {
        /// xdg-email stays for as long as a mail program that it had to start itself; one that has not
        /// failed by then is taken as started.
        std::chrono::milliseconds mailProgramStart = std::chrono::seconds(5);
        QString xdgEmail = QStringLiteral("xdg-email");
    };

    ShareMail(QDBusConnection sessionBus, ShareRetention& pictures, DesktopLibrarySource source)
        : ShareMail(std::move(sessionBus), pictures, std::move(source), Options()) {}
    ShareMail(QDBusConnection sessionBus, ShareRetention& pictures, DesktopLibrarySource source,
              Options mailOptions);

    void refresh() override;
    std::vector<ShareService> services() override;
    void perform(const QString& identifier, std::shared_ptr<SharePictureFile> file,
                 ShareServices::Completion completion) override;

private:
    bool mailProgramInstalled() const;
    void runXdgEmail(const std::shared_ptr<SharePictureFile>& file, ShareServices::Completion completion);

    QDBusConnection bus;
    ShareRetention& retention;
    DesktopLibrarySource library;
    Options options;
    bool portalInstalled = false;
};

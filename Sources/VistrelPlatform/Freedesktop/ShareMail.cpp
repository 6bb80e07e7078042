#include "VistrelPlatform/Freedesktop/ShareMail.h"

#include "VistrelPlatform/Freedesktop/BusAnswer.h"
#include "VistrelPlatform/Freedesktop/SharePortalRequest.h"

#include <QDBusMetaType>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTimer>

#include <fcntl.h>
#include <unistd.h>

namespace {

using FileDescriptors = QList<QDBusUnixFileDescriptor>;

QDBusUnixFileDescriptor openForReading(const QString& path) {
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    QDBusUnixFileDescriptor descriptor;
    if (file >= 0)
        descriptor.giveFileDescriptor(file);
    return descriptor;
}

} // namespace

ShareMail::ShareMail(QDBusConnection sessionBus, ShareRetention& pictures, DesktopLibrarySource source,
                     Options mailOptions)
    : bus(std::move(sessionBus)),
      retention(pictures),
      library(std::move(source)),
      options(std::move(mailOptions)) {
    qDBusRegisterMetaType<FileDescriptors>();
}

void ShareMail::refresh() {
    // Lists what could be started; the portal itself is not woken for this.
    const QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListActivatableNames"));
    whenAnswered(bus, call, this, [this](const QDBusReply<QStringList>& reply) {
        portalInstalled =
            reply.isValid() && reply.value().contains(QStringLiteral("org.freedesktop.portal.Desktop"));
    });
}

bool ShareMail::mailProgramInstalled() const {
    const Result<DesktopLibrary*> known = library();
    // Where nobody knows, trying tells.
    return !known || (*known)->opensAddresses("mailto");
}

std::vector<ShareService> ShareMail::services() {
    const bool sandboxed = QFileInfo::exists(QStringLiteral("/.flatpak-info"));
    const bool way =
        portalInstalled || sandboxed || !QStandardPaths::findExecutable(options.xdgEmail).isEmpty();
    // In a sandbox only the portal knows the mail programs.
    const bool canWrite = way && (sandboxed || mailProgramInstalled());
    QIcon icon = QIcon::fromTheme(QStringLiteral("mail-send"));
    if (icon.isNull())
        icon = QIcon::fromTheme(QStringLiteral("internet-mail"));
    return {{QStringLiteral("mail"), QStringLiteral("E-mail"), icon, canWrite}};
}

void ShareMail::perform(const QString&, std::shared_ptr<SharePictureFile> file,
                        ShareServices::Completion completion) {
    const FileDescriptors attachments{openForReading(file->path())};
    auto* request = new SharePortalRequest(bus, this);
    request->onAnswer = [this, request, file,
                         completion = std::move(completion)](SharePortalRequest::Answer answer) {
        request->deleteLater();
        if (answer == SharePortalRequest::Answer::unavailable) {
            runXdgEmail(file, completion);
            return;
        }
        const bool accepted = answer == SharePortalRequest::Answer::yes;
        if (accepted)
            retention.keep(file); // mail programs read the attachment when the mail is sent
        completion(accepted);
    };
    request->call(QStringLiteral("org.freedesktop.portal.Email"), QStringLiteral("ComposeEmail"), {QString()},
                  {{QStringLiteral("attachment_fds"), QVariant::fromValue(attachments)}});
}

void ShareMail::runXdgEmail(const std::shared_ptr<SharePictureFile>& file,
                            ShareServices::Completion completion) {
    auto started = ShareProcess::start(
        {options.xdgEmail, QStringLiteral("--utf8"), QStringLiteral("--attach"), file->path()});
    if (!started) {
        completion(false);
        return;
    }
    ShareProcess* process = started->release();
    process->setParent(this);
    auto* patience = new QTimer(this);
    patience->setSingleShot(true);
    const auto conclude = [this, patience, file, completion = std::move(completion)](bool success) {
        patience->stop();
        patience->deleteLater();
        if (success)
            retention.keep(file);
        completion(success);
    };
    process->onExit = [process, conclude](int status) {
        process->deleteLater();
        conclude(status == 0);
    };
    connect(patience, &QTimer::timeout, this, [process, conclude] {
        process->onExit = [process](int) { process->deleteLater(); };
        conclude(true);
    });
    patience->start(options.mailProgramStart);
}

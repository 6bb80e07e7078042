#include "VistrelPlatform/Freedesktop/ShareApplications.h"

#include "VistrelPlatform/CaptureTime.h"
#include "VistrelPlatform/Freedesktop/BusAnswer.h"
#include "VistrelPlatform/Freedesktop/ShareStart.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QFileInfo>
#include <QTimer>
#include <QUrl>

namespace {

const QString ownEntry = QStringLiteral("com.orvane.Vistrel.desktop");

/// Tells the window manager that the program's first window answers the user's click of this moment.
/// X servers and desktops here count the same milliseconds as the host clock.
QString startupIdentifier() {
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(CaptureTime::hostTime()).count();
    return QStringLiteral("vistrel-%1-share_TIME%2")
        .arg(QCoreApplication::applicationPid())
        .arg(static_cast<quint32>(milliseconds));
}

} // namespace

ShareApplications::ShareApplications(QDBusConnection sessionBus, ShareRetention& pictures,
                                     DesktopLibrarySource source)
    : bus(std::move(sessionBus)), retention(pictures), library(std::move(source)) {}

std::vector<ShareService> ShareApplications::services() {
    const Result<DesktopLibrary*> known = library();
    if (!known)
        return {};
    std::vector<ShareService> found;
    for (const DesktopLibrary::Application& application : (*known)->applicationsOpening("image/png")) {
        if (application.identifier != ownEntry)
            found.push_back(
                {application.identifier, application.name, application.icon, application.takesFiles});
    }
    return found;
}

void ShareApplications::perform(const QString& identifier, std::shared_ptr<SharePictureFile> file,
                                ShareServices::Completion completion) {
    const Result<DesktopLibrary*> known = library();
    // Asked for again: it may have been removed since the menu was shown.
    const auto activation = known ? (*known)->activation(identifier) : std::nullopt;
    if (activation == DesktopLibrary::Activation::bus && bus.isConnected()) {
        activate(QFileInfo(identifier).completeBaseName(), std::move(file), std::move(completion));
        return;
    }
    const qint64 pid = activation ? (*known)->launch(identifier, file->path(), startupIdentifier()) : 0;
    if (pid == 0) {
        QTimer::singleShot(0, this, [completion = std::move(completion)] { completion(false); });
        return;
    }
    auto* start = new ShareStart(std::make_unique<ShareProcess>(pid), this);
    start->onDecided = [this, start, file = std::move(file),
                        completion = std::move(completion)](bool started) {
        start->deleteLater();
        if (auto running = start->takeProcess())
            retention.keepWhileRunning(file, std::move(running));
        else if (started)
            retention.keep(file);
        completion(started);
    };
}

void ShareApplications::activate(const QString& application, std::shared_ptr<SharePictureFile> file,
                                 ShareServices::Completion completion) {
    const QString path = QLatin1Char('/') + QString(application)
                                                .replace(QLatin1Char('.'), QLatin1Char('/'))
                                                .replace(QLatin1Char('-'), QLatin1Char('_'));
    QDBusMessage call = QDBusMessage::createMethodCall(
        application, path, QStringLiteral("org.freedesktop.Application"), QStringLiteral("Open"));
    call << QStringList(QString::fromUtf8(QUrl::fromLocalFile(file->path()).toEncoded()))
         << QVariantMap{{QStringLiteral("desktop-startup-id"), startupIdentifier()}};
    whenAnswered(bus, call, this,
                 [this, file = std::move(file), completion = std::move(completion)](const auto& reply) {
                     const bool opened = reply.type() == QDBusMessage::ReplyMessage;
                     if (opened)
                         retention.keep(file);
                     completion(opened);
                 });
}

#include "VistrelPlatform/Freedesktop/PortalScreenAccess.h"

#include "VistrelPlatform/Freedesktop/SharePortalRequest.h"

#include <QDBusArgument>
#include <QDBusReply>
#include <QFile>
#include <QMap>
#include <QUrl>

namespace {

const QString storeName = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");
const QString storePath = QStringLiteral("/org/freedesktop/impl/portal/PermissionStore");
/// The table, and the one entry in it.
const QString screenshot = QStringLiteral("screenshot");

} // namespace

QString PortalScreenAccess::sandboxName() {
    if (QString flatpak = qEnvironmentVariable("FLATPAK_ID"); !flatpak.isEmpty())
        return flatpak;
    const QString snap = qEnvironmentVariable("SNAP_INSTANCE_NAME");
    return snap.isEmpty() ? QString() : QStringLiteral("snap.") + snap;
}

PortalScreenAccess::PortalScreenAccess(QDBusConnection sessionBus, QString name,
                                       std::chrono::milliseconds longestWait)
    : bus(std::move(sessionBus)), sandbox(std::move(name)) {
    if (!bus.isConnected())
        return;
    // Followed before it is read, so that no change falls in between.
    bus.connect(storeName, storePath, storeName, QStringLiteral("Changed"), this,
                SLOT(storeChanged(QDBusMessage)));
    QDBusMessage lookup =
        QDBusMessage::createMethodCall(storeName, storePath, storeName, QStringLiteral("Lookup"));
    lookup << screenshot << screenshot;
    const QDBusMessage reply = bus.call(lookup, QDBus::Block, static_cast<int>(longestWait.count()));
    // Nothing stored is an error reply.
    if (reply.type() == QDBusMessage::ReplyMessage)
        follow(reply.arguments().value(0));
}

void PortalScreenAccess::storeChanged(const QDBusMessage& change) {
    const QVariantList arguments = change.arguments();
    if (arguments.value(0).toString() == screenshot && arguments.value(1).toString() == screenshot)
        follow(arguments.value(4));
}

void PortalScreenAccess::follow(const QVariant& permissions) {
    QMap<QString, QStringList> byProgram;
    if (permissions.canConvert<QDBusArgument>()) {
        const auto argument = permissions.value<QDBusArgument>();
        if (argument.currentSignature() == QLatin1StringView("a{sas}"))
            argument >> byProgram;
    }
    granted = byProgram.value(sandbox).value(0) == QLatin1StringView("yes");
}

void PortalScreenAccess::prompt(std::function<void(bool)> onAnswered) {
    auto request = std::make_unique<SharePortalRequest>(bus, nullptr);
    request->onAnswer = [this, request = request.get(),
                         onAnswered = std::move(onAnswered)](SharePortalRequest::Answer answer) {
        granted = answer == SharePortalRequest::Answer::yes;
        // The portal proves its yes with a picture, which nobody asked for.
        const QUrl picture(request->results.value(QStringLiteral("uri")).toString());
        if (picture.isLocalFile())
            QFile::remove(picture.toLocalFile());
        question.release()->deleteLater();
        onAnswered(granted);
    };
    SharePortalRequest& asked = *request;
    question = std::move(request);
    asked.call(QStringLiteral("org.freedesktop.portal.Screenshot"), QStringLiteral("Screenshot"), {QString()},
               {{QStringLiteral("interactive"), false}, {QStringLiteral("modal"), true}});
}

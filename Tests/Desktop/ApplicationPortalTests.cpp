#include "Desktop/ApplicationOnDesktop.h"
#include "VistrelPlatform/SharePeer.h"

#include "VistrelPlatform/Keyboard.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMetaType>
#include <QFile>

#include <gtest/gtest.h>

namespace {

using Permissions = QMap<QString, QStringList>;

const QString setupWindow = QStringLiteral("Vistrel Setup");
const QString sandbox = QStringLiteral("com.orvane.Vistrel");
const QString storeName = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");
const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");

QDBusConnection connectTo(const DesktopSession& session) {
    qDBusRegisterMetaType<Permissions>();
    return QDBusConnection::connectToBus(
        QString::fromStdString(session.environment().at("DBUS_SESSION_BUS_ADDRESS")),
        QStringLiteral("portal"));
}

/// The desktop's portal with its store, and the user who is asked by it.
class Portal {
public:
    explicit Portal(const DesktopSession& session)
        : picture(session.folder(QStringLiteral("home/proof.png"))),
          bus(connectTo(session)),
          peer(bus, storeName, [this](const QDBusMessage& call) { receive(call); }) {
        EXPECT_TRUE(bus.registerService(portalName));
    }
    ~Portal() { QDBusConnection::disconnectFromBus(QStringLiteral("portal")); }

    bool isAsked() const { return !handle.isEmpty(); }
    void answer(bool yes) {
        QVariantMap results;
        if (yes) {
            QFile file(picture);
            EXPECT_TRUE(file.open(QIODevice::WriteOnly));
            results.insert(QStringLiteral("uri"), QUrl::fromLocalFile(picture).toString());
            stored[sandbox] = QStringList{QStringLiteral("yes")};
        }
        QDBusMessage response = QDBusMessage::createSignal(std::exchange(handle, QString()),
                                                           QStringLiteral("org.freedesktop.portal.Request"),
                                                           QStringLiteral("Response"));
        response << uint(yes ? 0 : 1) << results;
        bus.send(response);
    }
    /// In the desktop's own settings.
    void revoke() {
        stored[sandbox] = QStringList{QStringLiteral("no")};
        QDBusMessage change =
            QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/impl/portal/PermissionStore"),
                                       storeName, QStringLiteral("Changed"));
        change << QStringLiteral("screenshot") << QStringLiteral("screenshot") << false
               << QVariant::fromValue(QDBusVariant(uchar(0))) << QVariant::fromValue(stored);
        bus.send(change);
    }

    const QString picture;

private:
    void receive(const QDBusMessage& call) {
        if (call.member() == QLatin1StringView("Lookup")) {
            QDBusMessage reply = call.createReply();
            reply << QVariant::fromValue(stored) << QVariant::fromValue(QDBusVariant(uchar(0)));
            bus.send(stored.isEmpty()
                         ? call.createErrorReply(QStringLiteral("org.freedesktop.portal.Error.NotFound"),
                                                 QStringLiteral("No entry"))
                         : reply);
        } else if (call.member() == QLatin1StringView("Screenshot")) {
            const auto options = qdbus_cast<QVariantMap>(call.arguments().at(1));
            QString sender = call.service().mid(1);
            sender.replace(u'.', u'_');
            handle = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                         .arg(sender, options.value(QStringLiteral("handle_token")).toString());
            bus.send(call.createReply(QVariant::fromValue(QDBusObjectPath(handle))));
        } else {
            bus.send(call.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("No such method")));
        }
    }

    QDBusConnection bus;
    Permissions stored;
    QString handle;
    SharePeer peer;
};

} // namespace

TEST(ApplicationPortal, ASandboxAsksThePortalAndTheSetupComesBackUntilItIsDone) {
    ApplicationOnDesktop vistrel({.screenSize = {1280, 720}, .windowManager = true, .sessionBus = true});
    vistrel.session.setEnvironment("FLATPAK_ID", sandbox.toStdString());
    QFile::remove(vistrel.defaultsPath());
    Portal portal(vistrel.session);
    XTestInput& input = vistrel.session.input();
    const auto pending = [&] {
        return vistrel.defaults()[QLatin1StringView("screenAccessSetupPending")].toBool();
    };

    // The first step, refused.
    vistrel.launch();
    ASSERT_TRUE(vistrel.opens(setupWindow));
    input.key(Key::returnKey); // Allow Screen Capture
    ASSERT_TRUE(waitUntil([&] { return portal.isAsked(); }));
    EXPECT_TRUE(vistrel.closes(setupWindow)) << "it must not hide the question";
    EXPECT_TRUE(waitUntil(pending));
    portal.answer(false);
    ASSERT_TRUE(vistrel.opens(setupWindow));
    vistrel.pressShortcut();
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_EQ(vistrel.actions().count(QStringLiteral("captureReady")), 0);

    // Granted at the next start; what is pending brings the setup back.
    vistrel.launch();
    ASSERT_TRUE(vistrel.opens(setupWindow));
    input.key(Key::returnKey);
    ASSERT_TRUE(waitUntil([&] { return portal.isAsked(); }));
    portal.answer(true);
    ASSERT_TRUE(vistrel.opens(setupWindow));
    EXPECT_TRUE(waitUntil([&] { return !QFile::exists(portal.picture); }));
    EXPECT_TRUE(pending());
    input.key(Key::returnKey); // Apply
    ASSERT_TRUE(vistrel.closes(setupWindow));
    EXPECT_TRUE(waitUntil(
        [&] { return vistrel.defaults()[QLatin1StringView("onboardingVersion")] == 2 && !pending(); }));
    ASSERT_TRUE(vistrel.capture());
    input.key(Key::escape);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));

    // Taken back: the next capture leads to the setup instead, once the news has come.
    portal.revoke();
    ASSERT_TRUE(waitUntil([&] {
        const auto before = vistrel.actions().count(QStringLiteral("captureReady"));
        vistrel.pressShortcut();
        const auto captured = [&] {
            return vistrel.actions().count(QStringLiteral("captureReady")) > before;
        };
        waitUntil([&] { return vistrel.isOpen(setupWindow) || captured(); });
        if (!captured())
            return true;
        input.key(Key::escape);
        waitUntil([&] { return vistrel.actions().last() == QLatin1StringView("captureClosed"); });
        return false;
    }));
    EXPECT_TRUE(vistrel.isOpen(setupWindow));
}

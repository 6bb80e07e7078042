#include "Desktop/VistrelOnDesktop.h"
#include "Support/TestFiles.h"
#include "VistrelPlatform/SharePeer.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMetaType>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Permissions = QMap<QString, QStringList>;

const QString sandbox = u"com.orvane.Vistrel"_s;
const QString storeName = u"org.freedesktop.impl.portal.PermissionStore"_s;

QDBusConnection connectTo(const DesktopSession& session) {
    qDBusRegisterMetaType<Permissions>();
    return QDBusConnection::connectToBus(session.busAddress(), u"portal"_s);
}

/// The desktop's portal with its store, and the user who is asked by it.
class Portal {
public:
    explicit Portal(const DesktopSession& session)
        : picture(session.folder(u"home/proof.png"_s)),
          bus(connectTo(session)),
          peer(bus, storeName, [this](const QDBusMessage& call) { bus.send(answerTo(call)); }) {
        EXPECT_TRUE(bus.registerService(u"org.freedesktop.portal.Desktop"_s));
    }
    ~Portal() { QDBusConnection::disconnectFromBus(u"portal"_s); }

    bool isAsked() const {
        return waitUntil([this] { return !handle.isEmpty(); });
    }
    void answer(bool yes) {
        QVariantMap results;
        if (yes) {
            writeFile(picture, {});
            results.insert(u"uri"_s, QUrl::fromLocalFile(picture).toString());
            stored[sandbox] = QStringList{u"yes"_s};
        }
        QDBusMessage response = QDBusMessage::createSignal(
            std::exchange(handle, QString()), u"org.freedesktop.portal.Request"_s, u"Response"_s);
        bus.send(response << uint(yes ? 0 : 1) << results);
    }
    /// In the desktop's own settings.
    void revoke() {
        stored[sandbox] = QStringList{u"no"_s};
        QDBusMessage change = QDBusMessage::createSignal(u"/org/freedesktop/impl/portal/PermissionStore"_s,
                                                         storeName, u"Changed"_s);
        change << u"screenshot"_s << u"screenshot"_s << false << QVariant::fromValue(QDBusVariant(uchar(0)))
               << QVariant::fromValue(stored);
        bus.send(change);
    }

    const QString picture;

private:
    QDBusMessage answerTo(const QDBusMessage& call) {
        if (call.member() == "Lookup"_L1 && stored.isEmpty())
            return call.createErrorReply(u"org.freedesktop.portal.Error.NotFound"_s, u"No entry"_s);
        if (call.member() == "Lookup"_L1)
            return call.createReply(
                {QVariant::fromValue(stored), QVariant::fromValue(QDBusVariant(uchar(0)))});
        if (call.member() != "Screenshot"_L1)
            return call.createErrorReply(QDBusError::UnknownMethod, u"No such method"_s);
        const auto options = qdbus_cast<QVariantMap>(call.arguments().at(1));
        handle = u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(
            call.service().mid(1).replace(u'.', u'_'), options.value(u"handle_token"_s).toString());
        return call.createReply(QVariant::fromValue(QDBusObjectPath(handle)));
    }

    QDBusConnection bus;
    Permissions stored;
    QString handle;
    SharePeer peer;
};

} // namespace

TEST(ApplicationPortal, ASandboxAsksThePortalAndTheSetupComesBackUntilItIsDone) {
    VistrelOnDesktop vistrel(desktopWithBus());
    const QString setup = VistrelOnDesktop::setupWindow;
    vistrel.session.setEnvironment("FLATPAK_ID", sandbox.toStdString());
    QFile::remove(vistrel.defaultsPath());
    Portal portal(vistrel.session);
    const auto pending = [&] { return vistrel.defaults()[u"screenAccessSetupPending"].toBool(); };

    // The first step, refused.
    vistrel.launch();
    ASSERT_TRUE(vistrel.opens(setup));
    vistrel.key(Key::returnKey); // Allow Screen Capture
    ASSERT_TRUE(portal.isAsked());
    EXPECT_TRUE(vistrel.closes(setup)) << "it must not hide the question";
    EXPECT_TRUE(waitUntil(pending));
    portal.answer(false);
    ASSERT_TRUE(vistrel.opens(setup));
    vistrel.pressShortcut();
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_EQ(vistrel.count("captureReady"), 0);

    // Granted at the next start; what is pending brings the setup back.
    vistrel.launch();
    ASSERT_TRUE(vistrel.opens(setup));
    vistrel.key(Key::returnKey);
    ASSERT_TRUE(portal.isAsked());
    portal.answer(true);
    ASSERT_TRUE(vistrel.opens(setup));
    EXPECT_TRUE(waitUntil([&] { return !QFile::exists(portal.picture); }));
    EXPECT_TRUE(pending());
    vistrel.key(Key::returnKey); // Apply
    ASSERT_TRUE(vistrel.closes(setup));
    EXPECT_TRUE(waitUntil([&] { return vistrel.defaults()[u"onboardingVersion"] == 2 && !pending(); }));
    ASSERT_TRUE(vistrel.capture() && vistrel.closeCapture());

    // Taken back: the next capture leads to the setup instead, once the news has come.
    portal.revoke();
    EXPECT_TRUE(waitUntil([&] {
        const int before = vistrel.count("captureReady");
        vistrel.pressShortcut();
        const auto captured = [&] { return vistrel.count("captureReady") > before; };
        waitUntil([&] { return vistrel.isOpen(setup) || captured(); });
        return !captured() || !vistrel.closeCapture();
    }));
    EXPECT_TRUE(vistrel.isOpen(setup));
    EXPECT_EQ(vistrel.end(), 0);
    vistrel.launch();
    EXPECT_TRUE(vistrel.opens(setup)) << "a launch asks again, too";
}

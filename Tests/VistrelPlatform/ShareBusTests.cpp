#include "Support/LinkedDesktop.h"
#include "VistrelPlatform/Freedesktop/ShareBluetooth.h"
#include "VistrelPlatform/Freedesktop/ShareMail.h"
#include "VistrelPlatform/ShareTestBus.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString portalName = u"org.freedesktop.portal.Desktop"_s;

/// Shares one picture over a bus.
class ShareBusTests : public ::testing::Test {
protected:
    ShareBusTests() { qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path())); }

    /// The outcome, once there is one.
    template<class Kind>
    std::optional<bool> share(Kind& kind, const QString& identifier) {
        std::optional<bool> outcome;
        auto file = SharePictureFile::write({QByteArrayLiteral("picture bytes"), u"a.png"_s}).value();
        path = file->path();
        kind.perform(identifier, std::move(file), [&](bool shared) { outcome = shared; });
        EXPECT_FALSE(outcome);
        EXPECT_TRUE(waitUntil([&] { return outcome.has_value(); }));
        return outcome;
    }
    void send(const QDBusMessage& message) { bus.peer().send(message); }

    QTemporaryDir runtime;
    ShareTestBus bus;
    ShareRetention retention;
    QString path;
};

QVariant objectPath(const QString& path) {
    return QVariant::fromValue(QDBusObjectPath(path));
}

QString portalHandle(const QDBusMessage& call) {
    const QVariantMap options = qdbus_cast<QVariantMap>(call.arguments().at(1));
    return u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(
        call.service().mid(1).replace(u'.', u'_'), options.value(u"handle_token"_s).toString());
}

QByteArray attachedBytes(const QDBusMessage& call) {
    const QVariantMap options = qdbus_cast<QVariantMap>(call.arguments().at(1));
    const auto files = qdbus_cast<QList<QDBusUnixFileDescriptor>>(options.value(u"attachment_fds"_s));
    QFile file;
    if (files.size() != 1 || !file.open(files.first().fileDescriptor(), QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

} // namespace

TEST_F(ShareBusTests, mailSucceedsExactlyWhenThePortalSaysYes) {
    constexpr uint goesAway = 99;
    for (const uint answer : {0U, 1U, 2U, goesAway}) {
        QByteArray attached;
        SharePeer portal(bus.peer(), portalName, [&](const QDBusMessage& call) {
            attached = attachedBytes(call);
            const QString handle = portalHandle(call);
            QDBusMessage response =
                QDBusMessage::createSignal(handle, u"org.freedesktop.portal.Request"_s, u"Response"_s);
            response << answer << QVariantMap();
            if (answer != goesAway)
                send(response); // even before the reply
            send(call.createReply(objectPath(handle)));
            if (answer == goesAway)
                QMetaObject::invokeMethod(
                    qApp, [&portal] { portal.leave(); }, Qt::QueuedConnection);
        });
        ShareMail mail(bus.client(), retention, linkedDesktop, {.xdgEmail = u"/nonexistent"_s});
        EXPECT_EQ(share(mail, u"mail"_s), answer == 0) << answer;
        EXPECT_EQ(attached, "picture bytes") << answer;
    }
}

TEST_F(ShareBusTests, mailFallsBackToTheCommandWithoutAPortal) {
    const struct {
        const char* name;
        const char* script;
        std::chrono::milliseconds patience;
        bool shared;
        const char* connection = "client";
    } rows[] = {
        {"succeeds", "exit 0", 1h, true},
        {"noBus", "exit 0", 1h, true, "none"},
        {"noTool", "exit 3", 1h, false},
        {"killed", "kill -9 $$", 1h, false},
        {"mailProgramStaysOpen", "while [ -e \"$0\" ]; do sleep 0.01; done; exit 4", 1ms, true},
    };
    const SharePeer portal(bus.peer(), portalName, [&](const QDBusMessage& call) {
        send(call.createErrorReply(QDBusError::UnknownInterface, {}));
    });
    const QString command = runtime.filePath(u"email"_s);
    const QString words = runtime.filePath(u"words"_s);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        QFile::remove(words);
        writeFile(command,
                  "#!/bin/sh\n[ -r \"$3\" ] && echo \"$*\" > '" + words.toUtf8() + "'\n" + row.script + "\n",
                  true);
        ShareMail mail(QDBusConnection(QString::fromLatin1(row.connection)), retention, linkedDesktop,
                       {row.patience, command});
        EXPECT_EQ(share(mail, u"mail"_s), row.shared);
        ASSERT_TRUE(waitUntil([&] { return !readFile(words).isEmpty(); }));
        EXPECT_EQ(readFile(words).trimmed(), "--utf8 --attach " + path.toUtf8());
    }
    ShareMail mail(bus.client(), retention, linkedDesktop, {.xdgEmail = u"/nonexistent"_s});
    EXPECT_EQ(share(mail, u"mail"_s), false) << "neither portal nor command";
}

namespace {

using Interfaces = QMap<QString, QVariantMap>;

QMap<QDBusObjectPath, Interfaces> bluetoothObjects() {
    const QString push = u"00001105-0000-1000-8000-00805f9b34fb"_s;
    const QString audio = u"0000110b-0000-1000-8000-00805f9b34fb"_s;
    const QString on = u"/org/bluez/hci0"_s;
    const QString off = u"/org/bluez/hci1"_s;
    const auto adapter = [](bool powered) {
        return Interfaces{{u"org.bluez.Adapter1"_s, {{u"Powered"_s, powered}, {u"Address"_s, u"00:11"_s}}}};
    };
    const auto device = [](bool paired, const QString& profile, const QString& through) {
        return Interfaces{{u"org.bluez.Device1"_s,
                           {{u"Alias"_s, u"Phone & Co"_s},
                            {u"Address"_s, u"AA:BB"_s},
                            {u"Paired"_s, paired},
                            {u"UUIDs"_s, QStringList{profile}},
                            {u"Adapter"_s, objectPath(through)}}}};
    };
    return {{QDBusObjectPath(on), adapter(true)},
            {QDBusObjectPath(off), adapter(false)},
            {QDBusObjectPath(on + u"/phone"_s), device(true, push, on)},
            {QDBusObjectPath(on + u"/stranger"_s), device(false, push, on)},
            {QDBusObjectPath(on + u"/speaker"_s), device(true, audio, on)},
            {QDBusObjectPath(off + u"/phone"_s), device(true, push, off)}};
}

} // namespace

TEST_F(ShareBusTests, bluetoothOffersReachableDevicesAndReportsTheTransfersEnd) {
    struct Row {
        const char* name;
        const char* status;
        bool beforeReply;
        bool shared;
    };
    Row row{};
    QStringList calls;
    const auto answer = [&](const QDBusMessage& call) {
        calls << call.member();
        if (call.member() == "GetManagedObjects"_L1) {
            send(call.createReply(QVariant::fromValue(bluetoothObjects())));
        } else if (call.member() == "CreateSession"_L1) {
            const QVariantMap options = qdbus_cast<QVariantMap>(call.arguments().at(1));
            EXPECT_EQ(call.arguments().at(0), u"AA:BB"_s);
            EXPECT_EQ(options.value(u"Source"_s), u"00:11"_s);
            send(call.createReply(objectPath(u"/session"_s)));
        } else if (call.member() == "SendFile"_L1) {
            QDBusMessage changed = QDBusMessage::createSignal(
                u"/session/transfer"_s, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s);
            changed << u"org.bluez.obex.Transfer1"_s
                    << QVariantMap{{u"Status"_s, QString::fromLatin1(row.status)}} << QStringList();
            if (row.beforeReply)
                send(changed);
            send(call.createReply(
                {objectPath(u"/session/transfer"_s), QVariantMap{{u"Status"_s, u"queued"_s}}}));
            if (!row.beforeReply)
                send(changed);
        }
    };
    ShareBluetooth bluetooth(bus.client(), bus.client());
    bluetooth.refresh();
    EXPECT_EQ(share(bluetooth, u"/gone"_s), false) << "there is no service at all";
    EXPECT_TRUE(bluetooth.services().empty());

    const SharePeer peer(bus.peer(), u"org.bluez"_s, answer);
    ASSERT_TRUE(bus.peer().registerService(u"org.bluez.obex"_s));
    bluetooth.refresh();
    ASSERT_TRUE(waitUntil([&] {
        const auto services = bluetooth.services();
        return !services.empty() && services.front().canPerform;
    }));
    const auto services = bluetooth.services();
    ASSERT_EQ(services.size(), 1U);
    EXPECT_EQ(services.front().menuTitle, u"Bluetooth: Phone & Co"_s);
    for (const Row& each : {Row{"completes", "complete", false, true},
                            {"beforeTheReply", "complete", true, true},
                            {"refusedByTheDevice", "error", false, false}}) {
        SCOPED_TRACE(each.name);
        row = each;
        calls.clear();
        EXPECT_EQ(share(bluetooth, services.front().identifier), row.shared);
        EXPECT_TRUE(waitUntil([&] { return calls.contains(u"RemoveSession"_s); }));
        EXPECT_TRUE(waitUntil([&] { return !QFileInfo::exists(path); }));
    }
}

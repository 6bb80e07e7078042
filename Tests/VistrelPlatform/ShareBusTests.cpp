#include "VistrelPlatform/ShareTestBus.h"

#include "VistrelPlatform/Freedesktop/ShareBluetooth.h"
#include "VistrelPlatform/Freedesktop/ShareLinkedDevices.h"
#include "VistrelPlatform/Freedesktop/ShareMail.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

class ShareBusTests : public ::testing::Test {
protected:
    ShareBusTests() { qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path())); }

    std::shared_ptr<SharePictureFile> picture() {
        return SharePictureFile::write({QByteArrayLiteral("picture bytes"), QStringLiteral("a.png")}).value();
    }
    ShareServices::Completion note() {
        return [this](bool shared) { outcomes.push_back(shared); };
    }
    bool ends() {
        return waitUntil([this] { return !outcomes.empty(); });
    }

    QTemporaryDir runtime;
    ShareTestBus bus;
    ShareRetention retention;
    std::vector<bool> outcomes;
};

// Mail

QString portalHandle(const QDBusMessage& call) {
    const QVariantMap options = qdbus_cast<QVariantMap>(call.arguments().at(1));
    QString sender = call.service().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
        .arg(sender, options.value(QStringLiteral("handle_token")).toString());
}

QDBusMessage portalResponse(const QString& handle, uint answer) {
    QDBusMessage signal = QDBusMessage::createSignal(handle, QStringLiteral("org.freedesktop.portal.Request"),
                                                     QStringLiteral("Response"));
    signal << answer << QVariantMap();
    return signal;
}

QByteArray attachedBytes(const QDBusMessage& call) {
    const QVariantMap options = qdbus_cast<QVariantMap>(call.arguments().at(1));
    const auto files =
        qdbus_cast<QList<QDBusUnixFileDescriptor>>(options.value(QStringLiteral("attachment_fds")));
    QFile file;
    if (files.size() != 1 || !file.open(files.first().fileDescriptor(), QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

class SharePortalMailTests : public ShareBusTests, public ::testing::WithParamInterface<uint> {};

TEST_P(SharePortalMailTests, succeedsExactlyWhenThePortalSaysYes) {
    QByteArray attached;
    const SharePeer portal(
        bus.peer(), QStringLiteral("org.freedesktop.portal.Desktop"), [&](const QDBusMessage& call) {
            attached = attachedBytes(call);
            const QString handle = portalHandle(call);
            bus.peer().send(portalResponse(handle, GetParam())); // even before the reply
            bus.peer().send(call.createReply(QVariant::fromValue(QDBusObjectPath(handle))));
        });
    ShareMail mail(bus.client(), retention, {.xdgEmail = QStringLiteral("/nonexistent")});
    mail.perform(QStringLiteral("mail"), picture(), note());
    ASSERT_TRUE(ends());
    EXPECT_EQ(outcomes, std::vector{GetParam() == 0});
    EXPECT_EQ(attached, "picture bytes");
}

INSTANTIATE_TEST_SUITE_P(Answers, SharePortalMailTests, ::testing::Values(0U, 1U, 2U));

TEST_F(ShareBusTests, mailFailsWhenThePortalGoesAwayBeforeItAnswers) {
    SharePeer portal(
        bus.peer(), QStringLiteral("org.freedesktop.portal.Desktop"), [&](const QDBusMessage& call) {
            bus.peer().send(call.createReply(QVariant::fromValue(QDBusObjectPath(portalHandle(call)))));
            QMetaObject::invokeMethod(
                qApp, [&portal] { portal.leave(); }, Qt::QueuedConnection);
        });
    ShareMail mail(bus.client(), retention, {.xdgEmail = QStringLiteral("/nonexistent")});
    mail.perform(QStringLiteral("mail"), picture(), note());
    ASSERT_TRUE(ends());
    EXPECT_EQ(outcomes, std::vector{false});
}

struct MailCommandCase {
    const char* name;
    const char* script;
    std::chrono::milliseconds patience;
    bool shared;
};

class ShareMailCommandTests : public ShareBusTests, public ::testing::WithParamInterface<MailCommandCase> {};

TEST_P(ShareMailCommandTests, fallsBackToTheCommandWithoutAPortal) {
    const QString command = runtime.filePath(QStringLiteral("email"));
    const QString words = runtime.filePath(QStringLiteral("words"));
    ShareTestBus::writeFile(command, QStringLiteral("#!/bin/sh\n[ -r \"$3\" ] && echo \"$*\" > '%1'\n%2\n")
                                         .arg(words, QString::fromUtf8(GetParam().script)));
    QFile::setPermissions(command, QFile::ReadOwner | QFile::ExeOwner);
    const SharePeer portal(bus.peer(), QStringLiteral("org.freedesktop.portal.Desktop"),
                           [&](const QDBusMessage& call) {
                               bus.peer().send(call.createErrorReply(QDBusError::UnknownInterface, {}));
                           });
    ShareMail mail(bus.client(), retention, {GetParam().patience, command});
    const auto file = picture();
    mail.perform(QStringLiteral("mail"), file, note());
    ASSERT_TRUE(ends());
    EXPECT_EQ(outcomes, std::vector{GetParam().shared});
    ASSERT_TRUE(waitUntil([&] { return QFileInfo(words).size() > 0; }));
    QFile used(words);
    ASSERT_TRUE(used.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(used.readAll()).trimmed(), QStringLiteral("--utf8 --attach ") + file->path());
}

INSTANTIATE_TEST_SUITE_P(Commands, ShareMailCommandTests,
                         ::testing::Values(MailCommandCase{"succeeds", "exit 0", std::chrono::hours(1), true},
                                           MailCommandCase{"noTool", "exit 3", std::chrono::hours(1), false},
                                           MailCommandCase{"killed", "kill -9 $$", std::chrono::hours(1),
                                                           false},
                                           MailCommandCase{"mailProgramStaysOpen",
                                                           "while [ -e \"$0\" ]; do sleep 0.01; done; exit 4",
                                                           std::chrono::milliseconds(1), true}),
                         [](const auto& entry) { return std::string(entry.param.name); });

TEST_F(ShareBusTests, mailFailsWithoutPortalAndCommand) {
    ShareMail mail(bus.client(), retention, {.xdgEmail = QStringLiteral("/nonexistent")});
    const auto file = picture();
    const QString path = file->path();
    mail.perform(QStringLiteral("mail"), file, note());
    EXPECT_TRUE(outcomes.empty());
    ASSERT_TRUE(ends());
    EXPECT_EQ(outcomes, std::vector{false});
}

// Bluetooth

using Interfaces = QMap<QString, QVariantMap>;

QVariantMap phone(bool paired, const QString& profile, const QString& adapter) {
    return {{QStringLiteral("Alias"), QStringLiteral("Phone & Co")},
            {QStringLiteral("Address"), QStringLiteral("AA:BB")},
            {QStringLiteral("Paired"), paired},
            {QStringLiteral("UUIDs"), QStringList{profile}},
            {QStringLiteral("Adapter"), QVariant::fromValue(QDBusObjectPath(adapter))}};
}

QMap<QDBusObjectPath, Interfaces> bluetoothObjects() {
    const QString push = QStringLiteral("00001105-0000-1000-8000-00805f9b34fb");
    const QString audio = QStringLiteral("0000110b-0000-1000-8000-00805f9b34fb");
    const QString device = QStringLiteral("org.bluez.Device1");
    const auto adapter = [](bool powered) {
        return Interfaces{
            {QStringLiteral("org.bluez.Adapter1"),
             {{QStringLiteral("Powered"), powered}, {QStringLiteral("Address"), QStringLiteral("00:11")}}}};
    };
    const QString on = QStringLiteral("/org/bluez/hci0");
    const QString off = QStringLiteral("/org/bluez/hci1");
    return {{QDBusObjectPath(on), adapter(true)},
            {QDBusObjectPath(off), adapter(false)},
            {QDBusObjectPath(on + QStringLiteral("/phone")), {{device, phone(true, push, on)}}},
            {QDBusObjectPath(on + QStringLiteral("/stranger")), {{device, phone(false, push, on)}}},
            {QDBusObjectPath(on + QStringLiteral("/speaker")), {{device, phone(true, audio, on)}}},
            {QDBusObjectPath(off + QStringLiteral("/phone")), {{device, phone(true, push, off)}}}};
}

struct ObexCase {
    const char* name;
    /// What happens after the transfer has begun.
    const char* status;
    bool beforeReply;
    bool shared;
};

class ShareBluetoothTests : public ShareBusTests, public ::testing::WithParamInterface<ObexCase> {
protected:
    void answerSender(const QDBusMessage& call) {
        calls << call.member();
        if (call.member() == QLatin1String("CreateSession")) {
            const QVariantMap options = qdbus_cast<QVariantMap>(call.arguments().at(1));
            EXPECT_EQ(call.arguments().at(0).toString(), QLatin1String("AA:BB"));
            EXPECT_EQ(options.value(QStringLiteral("Source")).toString(), QLatin1String("00:11"));
            bus.peer().send(
                call.createReply(QVariant::fromValue(QDBusObjectPath(QStringLiteral("/session")))));
            return;
        }
        if (call.member() != QLatin1String("SendFile"))
            return;
        QDBusMessage changed = QDBusMessage::createSignal(QStringLiteral("/session/transfer"),
                                                          QStringLiteral("org.freedesktop.DBus.Properties"),
                                                          QStringLiteral("PropertiesChanged"));
        changed << QStringLiteral("org.bluez.obex.Transfer1")
                << QVariantMap{{QStringLiteral("Status"), QString::fromLatin1(GetParam().status)}}
                << QStringList();
        if (GetParam().beforeReply)
            bus.peer().send(changed);
        bus.peer().send(
            call.createReply({QVariant::fromValue(QDBusObjectPath(QStringLiteral("/session/transfer"))),
                              QVariantMap{{QStringLiteral("Status"), QStringLiteral("queued")}}}));
        if (!GetParam().beforeReply)
            bus.peer().send(changed);
    }

    QStringList calls;
};

TEST_P(ShareBluetoothTests, offersOnlyReachableDevicesAndReportsTheTransfersEnd) {
    ShareBluetooth bluetooth(bus.client(), bus.client());
    const SharePeer peer(bus.peer(), QStringLiteral("org.bluez"), [&](const QDBusMessage& call) {
        if (call.member() == QLatin1String("GetManagedObjects"))
            bus.peer().send(call.createReply(QVariant::fromValue(bluetoothObjects())));
        else
            answerSender(call);
    });
    ASSERT_TRUE(bus.peer().registerService(QStringLiteral("org.bluez.obex")));
    bluetooth.refresh();
    ASSERT_TRUE(waitUntil([&] {
        const auto services = bluetooth.services();
        return !services.empty() && services.front().canPerform;
    }));
    const auto services = bluetooth.services();
    ASSERT_EQ(services.size(), 1U);
    EXPECT_EQ(services.front().menuTitle, QStringLiteral("Bluetooth: Phone & Co"));

    auto file = picture();
    const QString path = file->path();
    bluetooth.perform(services.front().identifier, std::move(file), note());
    ASSERT_TRUE(ends());
    EXPECT_EQ(outcomes, std::vector{GetParam().shared});
    EXPECT_TRUE(waitUntil([&] { return calls.contains(QStringLiteral("RemoveSession")); }));
    EXPECT_TRUE(waitUntil([&] { return !QFileInfo::exists(path); }));
}

INSTANTIATE_TEST_SUITE_P(Transfers, ShareBluetoothTests,
                         ::testing::Values(ObexCase{"completes", "complete", false, true},
                                           ObexCase{"completesBeforeTheReply", "complete", true, true},
                                           ObexCase{"refusedByTheDevice", "error", false, false}),
                         [](const auto& entry) { return std::string(entry.param.name); });

TEST_F(ShareBusTests, noBluetoothServiceMeansNoDevices) {
    ShareBluetooth bluetooth(bus.client(), bus.client());
    bluetooth.refresh();
    bluetooth.perform(QStringLiteral("/gone"), picture(), note());
    ASSERT_TRUE(ends());
    EXPECT_TRUE(bluetooth.services().empty());
    EXPECT_EQ(outcomes, std::vector{false});
}

// Linked devices

TEST_F(ShareBusTests, linkedDevicesAreListedAndTold) {
    QString address;
    const SharePeer daemon(bus.peer(), QStringLiteral("org.kde.kdeconnect"), [&](const QDBusMessage& call) {
        if (call.member() == QLatin1String("deviceNames")) {
            const QMap<QString, QString> names{{QStringLiteral("ab_1"), QStringLiteral("Tablet")}};
            bus.peer().send(call.createReply(QVariant::fromValue(names)));
        } else if (call.path().endsWith(QLatin1String("/devices/ab_1/share"))) {
            address = call.arguments().first().toString();
            bus.peer().send(call.createReply());
        } else {
            bus.peer().send(call.createErrorReply(QDBusError::UnknownObject, {}));
        }
    });
    ShareLinkedDevices devices(bus.client(), retention);
    devices.refresh();
    ASSERT_TRUE(waitUntil([&] { return !devices.services().empty(); }));
    EXPECT_EQ(devices.services().front().menuTitle, QStringLiteral("Tablet"));

    const auto file = picture();
    devices.perform(QStringLiteral("ab_1"), file, note());
    ASSERT_TRUE(ends());
    EXPECT_EQ(address, QStringLiteral("file://") + file->path());
    devices.perform(QStringLiteral("cd_2"), file, note());
    ASSERT_TRUE(waitUntil([this] { return outcomes.size() == 2; }));
    EXPECT_EQ(outcomes, (std::vector{true, false}));
}

} // namespace

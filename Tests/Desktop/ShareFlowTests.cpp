#include "Desktop/EditorOnDesktop.h"

#include "VistrelPlatform/Keyboard.h"
#include "VistrelPlatform/SharePeer.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/stat.h>

namespace {

/// Puts programs on the desktop as an installation does.
class ShareFlow : public ::testing::Test {
protected:
    ShareFlow() {
        DesktopSession& session = vistrel.session;
        for (const char* name : {"data/applications", "bin", "nothing"})
            QDir().mkpath(session.folder(QLatin1StringView(name)));
        session.setEnvironment("XDG_DATA_DIRS", session.folder(QStringLiteral("nothing")).toStdString());
        session.setEnvironment("PATH", session.folder(QStringLiteral("bin")).toStdString() + ":" +
                                           session.environment().at("PATH"));
        // Both live until the test lets them go.
        const QString untilReleased = QStringLiteral("while [ ! -e '%1' ]; do sleep 0.05; done\n")
                                          .arg(session.folder(QStringLiteral("released")));
        writeProgram(QStringLiteral("viewer"),
                     QStringLiteral("cp \"$1\" '%1/shared.png'\n"
                                    "stat -c '%a' \"$1\" \"${1%/*}\" | tr '\\n' ' ' > '%1/modes'\n"
                                    "echo \"$1\" > '%1/path.new' && mv '%1/path.new' '%1/path'\n")
                             .replace(QStringLiteral("%1/"), session.folder() + u'/') +
                         untilReleased);
        writeProgram(QStringLiteral("gnome-control-center"),
                     QStringLiteral("echo \"$@\" > '%1'\n").arg(session.folder(QStringLiteral("page"))) +
                         untilReleased);
        writeProgram(QStringLiteral("fleeting"), QStringLiteral("exit 1\n"));
        writeFile(QStringLiteral("data/applications/mimeinfo.cache"),
                  "[MIME Cache]\nimage/png=fleeting.desktop;viewer.desktop;\n");
        writeFile(QStringLiteral("config/mimeapps.list"),
                  "[Default Applications]\nimage/png=viewer.desktop\n");
    }
    ~ShareFlow() override { writeFile(QStringLiteral("released"), {}); }

    void writeFile(const QString& name, const QByteArray& text) const {
        QFile file(vistrel.session.folder(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
        file.write(text);
    }
    void writeProgram(const QString& name, const QString& script) const {
        const QString path = vistrel.session.folder(QStringLiteral("bin/") + name);
        writeFile(QStringLiteral("bin/") + name, "#!/bin/sh\n" + script.toUtf8());
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        writeFile(
            QStringLiteral("data/applications/%1.desktop").arg(name),
            QStringLiteral("[Desktop Entry]\nType=Application\nName=%1\nExec=%2 %f\nMimeType=image/png;\n")
                .arg(name, path)
                .toUtf8());
    }
    QByteArray text(const char* name) const {
        QFile file(vistrel.session.folder(QLatin1StringView(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
    }
    QStringList picturesOnDisk() const {
        QDirIterator files(vistrel.session.folder(QStringLiteral("runtime/Vistrel/Share")), QDir::Files,
                           QDirIterator::Subdirectories);
        QStringList found;
        while (files.hasNext())
            found << files.next();
        return found;
    }

    /// Opens the menu and waits until it is on the screen.
    [[nodiscard]] bool openMenu(int time) {
        vistrel.click(vistrel.actionButton(EditorOnDesktop::share));
        return vistrel.waitFor(QStringLiteral("shareRequested"), time) && waitUntil([this] {
                   const auto windows = vistrel.windows();
                   return windows.size() == 2 && windows.back().rect.width() < 1280;
               });
    }
    bool overlayIsBack() {
        return waitUntil([this] {
            const auto windows = vistrel.windows();
            return windows.size() == 1 && vistrel.session.client().focusedWindow() == overlay;
        });
    }
    bool overlayIsGone() {
        return waitUntil([this] { return vistrel.windows().empty(); });
    }
    void press(KeyCode key) { vistrel.session.input().key(key); }

    EditorOnDesktop vistrel{{.screenSize = {1280, 720}, .windowManager = true, .sessionBus = true}};
    xcb_window_t overlay = XCB_NONE;
};

} // namespace

TEST_F(ShareFlow, TheOverlayMakesRoomForTheChosenProgramAndComesBackUnlessItStarted) {
    ASSERT_TRUE(vistrel.edit({100, 100, 400, 300}));
    overlay = vistrel.nextFocus();

    ASSERT_TRUE(openMenu(1));
    press(Key::escape);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shareCancelled"), 1));
    EXPECT_TRUE(overlayIsBack());

    // The desktop's settings: gone while the user is there, back with the next capture.
    ASSERT_TRUE(openMenu(2));
    press(Key::upArrow);
    press(Key::returnKey);
    ASSERT_TRUE(overlayIsGone());
    EXPECT_TRUE(waitUntil([this] { return text("page") == "default-apps"; }));
    vistrel.pressShortcut();
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shareCancelled"), 2));
    EXPECT_TRUE(overlayIsBack());

    // A program that is there no longer when it is chosen.
    ASSERT_TRUE(openMenu(3));
    EXPECT_TRUE(QFile::remove(vistrel.session.folder(QStringLiteral("bin/fleeting"))));
    press(Key::downArrow);
    press(Key::downArrow);
    press(Key::returnKey);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shareCancelled"), 3));
    EXPECT_TRUE(overlayIsBack());
    EXPECT_EQ(picturesOnDisk(), QStringList());

    // The preferred one, which comes first.
    ASSERT_TRUE(openMenu(4));
    press(Key::downArrow);
    press(Key::returnKey);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));
    EXPECT_TRUE(overlayIsGone());
    ASSERT_TRUE(waitUntil([this] { return !text("path").isEmpty(); }));
    EXPECT_EQ(text("modes"), "600 700");
    EXPECT_EQ(QStringList(QString::fromUtf8(text("path"))), picturesOnDisk());
    EXPECT_EQ(largestDifference(QImage(vistrel.session.folder(QStringLiteral("shared.png"))),
                                vistrel.desktop.copy(100, 100, 400, 300)),
              0);
    EXPECT_EQ(
        vistrel.story(),
        std::string("launch captureRequested captureReady selectionCreated shareRequested shareCancelled "
                    "shareRequested captureBusy shareCancelled shareRequested shareCancelled "
                    "shareRequested shareSucceeded captureClosed"));

    // The reader may still need the picture when we end; the next launch removes it.
    vistrel.program->sendSignal(SIGTERM);
    EXPECT_EQ(vistrel.program->waitForExit(patience), 0);
    EXPECT_EQ(picturesOnDisk().size(), 1);
    vistrel.start();
    EXPECT_TRUE(waitUntil([this] { return picturesOnDisk().isEmpty(); }));
}

TEST_F(ShareFlow, ClosingTheSettingsBringsTheOverlayBackAndEscapeEndsTheCapture) {
    ASSERT_TRUE(vistrel.edit({100, 100, 400, 300}));
    overlay = vistrel.nextFocus();
    ASSERT_TRUE(openMenu(1));
    press(Key::upArrow);
    press(Key::returnKey);
    ASSERT_TRUE(overlayIsGone());
    ASSERT_TRUE(waitUntil([this] { return !text("page").isEmpty(); }));
    // A settings program that ends at once has only passed the request on.
    std::this_thread::sleep_for(std::chrono::seconds(4));
    writeFile(QStringLiteral("released"), {});
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shareCancelled")));
    EXPECT_TRUE(overlayIsBack());
    press(Key::escape);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));
    EXPECT_EQ(picturesOnDisk(), QStringList());
}

TEST_F(ShareFlow, ADeviceThatTheDesktopReachesIsOfferedAndGetsThePicture) {
    qDBusRegisterMetaType<QMap<QString, QString>>();
    const QString connection = QStringLiteral("devices");
    const QDBusConnection bus = QDBusConnection::connectToBus(
        QString::fromStdString(vistrel.session.environment().at("DBUS_SESSION_BUS_ADDRESS")), connection);
    bool asked = false;
    QString address;
    {
        const SharePeer daemon(bus, QStringLiteral("org.kde.kdeconnect"), [&](const QDBusMessage& call) {
            QVariant answer;
            if (call.member() == QLatin1StringView("deviceNames")) {
                answer = QVariant::fromValue(
                    QMap<QString, QString>{{QStringLiteral("ab_1"), QStringLiteral("Tablet")}});
                asked = true;
            } else {
                address = call.arguments().value(0).toString();
            }
            bus.send(answer.isNull() ? call.createReply() : call.createReply(answer));
        });
        ASSERT_TRUE(vistrel.edit({100, 100, 400, 300}));
        ASSERT_TRUE(waitUntil([&] { return asked; }));
        ASSERT_TRUE(openMenu(1));
        press(Key::downArrow); // before the applications
        press(Key::returnKey);
        ASSERT_TRUE(waitUntil([&] { return !address.isEmpty(); }));
        ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shareSucceeded")));
        EXPECT_EQ(QStringList(QUrl(address).toLocalFile()), picturesOnDisk());
        EXPECT_TRUE(overlayIsGone());
    }
    QDBusConnection::disconnectFromBus(connection);
}

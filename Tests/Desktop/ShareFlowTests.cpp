#include "Desktop/EditorOnDesktop.h"
#include "Support/TestFiles.h"
#include "VistrelPlatform/SharePeer.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDirIterator>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Puts programs on the desktop as an installation does.
class ShareFlow : public ::testing::Test {
public:
    ~ShareFlow() override { release(); }

protected:
    ShareFlow() {
        vistrel.session.setEnvironment("XDG_DATA_DIRS", path("nothing").toStdString());
        vistrel.session.setEnvironment("PATH", path("bin").toStdString() + ":" +
                                                   vistrel.session.environment().at("PATH"));
        // Both live until the test lets them go.
        const QByteArray untilReleased = "while [ ! -e '%1/released' ]; do sleep 0.05; done\n";
        install("viewer", "cp \"$1\" '%1/shared.png'\n"
                          "stat -c '%a' \"$1\" \"${1%/*}\" | tr '\\n' ' ' > '%1/modes'\n"
                          "echo \"$1\" > '%1/path.new' && mv '%1/path.new' '%1/path'\n" +
                              untilReleased);
        install("gnome-control-center", "echo \"$@\" > '%1/page'\n" + untilReleased);
        install("fleeting", "exit 1\n");
        writeFile(path("data/applications/mimeinfo.cache"),
                  "[MIME Cache]\nimage/png=fleeting.desktop;viewer.desktop;\n");
        writeFile(path("config/mimeapps.list"), "[Default Applications]\nimage/png=viewer.desktop\n");
    }

    [[nodiscard]] bool edit() {
        const bool selected = vistrel.edit(area);
        overlay = vistrel.nextFocus();
        return selected;
    }

    QString path(const char* name) const { return vistrel.session.folder(QLatin1String(name)); }
    void install(const QByteArray& name, QByteArray script) const {
        script.replace("%1", vistrel.session.folder().toUtf8());
        writeFile(path("bin/" + name), "#!/bin/sh\n" + script, true);
        writeFile(path("data/applications/" + name + ".desktop"),
                  "[Desktop Entry]\nType=Application\nName=" + name +
                      "\nExec=" + path("bin/" + name).toUtf8() + " %f\nMimeType=image/png;\n");
    }
    void release() const { writeFile(path("released"), {}); }
    QByteArray text(const char* name) const { return readFile(path(name)).trimmed(); }
    QStringList picturesOnDisk() const {
        QDirIterator files(path("runtime/Vistrel/Share"), QDir::Files, QDirIterator::Subdirectories);
        QStringList found;
        while (files.hasNext())
            found << files.next();
        return found;
    }

    /// Opens the menu, waits until it is on the screen, goes along it and chooses.
    [[nodiscard]] bool choose(int time, std::initializer_list<KeyCode> keys) {
        vistrel.click(vistrel.actionButton(EditorOnDesktop::share));
        const bool isOpen = vistrel.waitFor("shareRequested", time) && waitUntil([this] {
                                const auto windows = vistrel.windows();
                                return windows.size() == 2 && windows.back().rect.width() < 1280;
                            });
        for (const KeyCode key : keys)
            vistrel.key(key);
        return isOpen;
    }
    bool overlayIsBack() {
        return waitUntil([this] {
            return vistrel.windows().size() == 1 && vistrel.session.client().focusedWindow() == overlay;
        });
    }
    bool overlayIsGone() {
        return waitUntil([this] { return vistrel.windows().empty(); });
    }

    static constexpr QRect area{100, 100, 400, 300};
    EditorOnDesktop vistrel{desktopWithBus()};
    xcb_window_t overlay = XCB_NONE;
};

} // namespace

TEST_F(ShareFlow, TheOverlayMakesRoomForTheChosenProgramAndComesBackUnlessItStarted) {
    ASSERT_TRUE(edit() && choose(1, {Key::escape}));
    ASSERT_TRUE(vistrel.waitFor("shareCancelled", 1));
    EXPECT_TRUE(overlayIsBack());

    // The desktop's settings: gone while the user is there, back with the next capture.
    ASSERT_TRUE(choose(2, {Key::upArrow, Key::returnKey}));
    ASSERT_TRUE(overlayIsGone());
    EXPECT_TRUE(waitUntil([this] { return text("page") == "default-apps"; }));
    vistrel.pressShortcut();
    ASSERT_TRUE(vistrel.waitFor("shareCancelled", 2));
    EXPECT_TRUE(overlayIsBack());

    // A program that is there no longer when it is chosen.
    ASSERT_TRUE(choose(3, {}));
    EXPECT_TRUE(QFile::remove(path("bin/fleeting")));
    for (const KeyCode key : {Key::downArrow, Key::downArrow, Key::returnKey})
        vistrel.key(key);
    ASSERT_TRUE(vistrel.waitFor("shareCancelled", 3));
    EXPECT_TRUE(overlayIsBack());
    EXPECT_EQ(picturesOnDisk(), QStringList());

    // The preferred one, which comes first.
    ASSERT_TRUE(choose(4, {Key::downArrow, Key::returnKey}));
    ASSERT_TRUE(vistrel.waitFor("captureClosed"));
    EXPECT_TRUE(overlayIsGone());
    ASSERT_TRUE(waitUntil([this] { return !text("path").isEmpty(); }));
    EXPECT_EQ(text("modes"), "600 700");
    EXPECT_EQ(QStringList(QString::fromUtf8(text("path"))), picturesOnDisk());
    EXPECT_TRUE(pictureIn(readFile(path("shared.png"))) == vistrel.desktop.copy(area));
    EXPECT_EQ(vistrel.story(),
              "launch captureRequested captureReady selectionCreated shareRequested shareCancelled "
              "shareRequested captureBusy shareCancelled shareRequested shareCancelled "
              "shareRequested shareSucceeded captureClosed");

    // The reader may still need the picture when we end; the next launch removes it.
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_EQ(picturesOnDisk().size(), 1);
    vistrel.start();
    EXPECT_TRUE(waitUntil([this] { return picturesOnDisk().isEmpty(); }));
}

TEST_F(ShareFlow, ClosingTheSettingsBringsTheOverlayBackAndEscapeEndsTheCapture) {
    ASSERT_TRUE(edit() && choose(1, {Key::upArrow, Key::returnKey}));
    ASSERT_TRUE(overlayIsGone());
    ASSERT_TRUE(waitUntil([this] { return !text("page").isEmpty(); }));
    // A settings program that ends at once has only passed the request on.
    std::this_thread::sleep_for(std::chrono::seconds(4));
    release();
    ASSERT_TRUE(vistrel.waitFor("shareCancelled"));
    EXPECT_TRUE(overlayIsBack());
    ASSERT_TRUE(vistrel.closeCapture());
    EXPECT_EQ(picturesOnDisk(), QStringList());
}

TEST_F(ShareFlow, ADoubleClickOpensTheMenuAndChoosesNothing) {
    ASSERT_TRUE(edit());
    const QPoint button = vistrel.actionButton(EditorOnDesktop::share);
    vistrel.session.input().doubleClick(button);
    ASSERT_TRUE(waitUntil([this] { return vistrel.windows().size() == 2; }));
    vistrel.key(Key::escape);
    ASSERT_TRUE(vistrel.waitFor("shareCancelled")) << vistrel.story();
    EXPECT_TRUE(overlayIsBack());
    EXPECT_EQ(vistrel.count("shareRequested"), 1);

    ASSERT_TRUE(choose(2, {}));
    vistrel.click(vistrel.windows().back().rect.topLeft() + QPoint(60, 14));
    EXPECT_TRUE(vistrel.waitFor("shareSucceeded"));
}

TEST_F(ShareFlow, ADeviceThatTheDesktopReachesIsOfferedAndGetsThePicture) {
    qDBusRegisterMetaType<QMap<QString, QString>>();
    const QDBusConnection bus = QDBusConnection::connectToBus(vistrel.session.busAddress(), u"devices"_s);
    bool asked = false;
    QString address;
    {
        const SharePeer daemon(bus, u"org.kde.kdeconnect"_s, [&](const QDBusMessage& call) {
            const QMap<QString, QString> names{{u"ab_1"_s, u"Tablet"_s}};
            const bool asksNames = call.member() == "deviceNames"_L1;
            asked |= asksNames;
            if (!asksNames)
                address = call.path() + ' '_L1 + call.arguments().value(0).toString();
            bus.send(asksNames ? call.createReply(QVariant::fromValue(names)) : call.createReply());
        });
        ASSERT_TRUE(edit() && waitUntil([&] { return asked; }));
        ASSERT_TRUE(choose(1, {Key::downArrow, Key::returnKey})); // before the applications
        ASSERT_TRUE(vistrel.waitFor("shareSucceeded"));
        ASSERT_EQ(picturesOnDisk().size(), 1);
        EXPECT_TRUE(address.endsWith("/devices/ab_1/share file://"_L1 + picturesOnDisk().first()));
        EXPECT_TRUE(overlayIsGone());
    }
    QDBusConnection::disconnectFromBus(u"devices"_s);
}

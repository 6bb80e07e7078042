#include "Desktop/ApplicationOnDesktop.h"

#include "VistrelPlatform/Keyboard.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

const QString setupWindow = QStringLiteral("Vistrel Setup");
const QString settingsWindow = QStringLiteral("Vistrel Settings");
const QString alert = QStringLiteral("Vistrel");
constexpr KeyCode cKey = 8;
constexpr KeyCode dKey = 2;
constexpr KeyCode nineKey = 25;
constexpr KeyCode uKey = 32;
constexpr KeyCode tabKey = 48;
constexpr KeyCode spaceKey = 49;
constexpr ModifierMask commandShift = Modifier::command | Modifier::shift;

DesktopSession::Options plainDesktop() {
    return {.screenSize = {1280, 720}, .windowManager = true};
}

/// As the program stores a list of one.
QJsonObject stored(KeyCode key, ModifierMask modifiers, const char* label) {
    const QByteArray list = QStringLiteral(R"([{"keyCode":%1,"modifiers":%2,"keyLabel":"%3"}])")
                                .arg(key)
                                .arg(modifiers)
                                .arg(QLatin1String(label))
                                .toUtf8();
    return {{QStringLiteral("screenshotShortcuts"),
             QJsonObject{{QStringLiteral("data"), QString::fromLatin1(list.toBase64())}}}};
}

} // namespace

TEST(ApplicationFlow, AFreshHomeIsSetUpByKeyboardAndTheNextLaunchOpensNoWindow) {
    ApplicationOnDesktop vistrel(plainDesktop());
    QFile::remove(vistrel.defaultsPath());
    vistrel.launch();
    ASSERT_TRUE(vistrel.opens(setupWindow));
    XTestInput& input = vistrel.session.input();

    const auto height = [&] {
        const auto window = vistrel.session.client().windowTitled(setupWindow);
        return window ? window->rect.height() : 0;
    };
    const int small = height();
    vistrel.mnemonic(cKey); // a custom shortcut
    ASSERT_TRUE(waitUntil([&] { return height() > small; })) << "the recorder appears";
    input.key(tabKey);
    input.key(spaceKey);
    ASSERT_TRUE(vistrel.isReleased());
    vistrel.pressShortcut(); // recorded, not obeyed
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shortcutChanged")));

    // The window manager's own chord reaches the recorder too, and stays the window manager's.
    input.key(spaceKey);
    ASSERT_TRUE(vistrel.isReleased());
    input.chord(Modifier::command, dKey);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shortcutFailed")));
    ASSERT_TRUE(vistrel.opens(alert));
    EXPECT_EQ(
        vistrel.session.client().windowProperty(vistrel.session.client().root(), "_NET_SHOWING_DESKTOP"),
        std::vector<std::uint32_t>{0});
    input.key(Key::returnKey);
    ASSERT_TRUE(vistrel.opens(setupWindow));
    EXPECT_EQ(vistrel.storedShortcut(), QStringLiteral("768+9"));

    input.key(spaceKey);
    ASSERT_TRUE(vistrel.isReleased());
    input.key(uKey); // refused without a modifier
    input.chord(commandShift, uKey);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shortcutChanged"), 2));
    // Named as the user's keyboard names it.
    const auto layout =
        vistrel.session.start(QStringLiteral("setxkbmap"), {QStringLiteral("-layout"), QStringLiteral("fr")});
    ASSERT_EQ(layout->waitForExit(patience), 0);
    constexpr std::uint32_t control = 4;
    constexpr std::uint8_t uScanCode = 30;
    input.key(spaceKey);
    ASSERT_TRUE(vistrel.isReleased(ApplicationOnDesktop::superShift, uScanCode));
    input.chord(Modifier::control, nineKey);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shortcutChanged"), 3));
    EXPECT_TRUE(waitUntil([&] { return vistrel.storedShortcut() == QStringLiteral("4096+Ç"); }));
    input.key(spaceKey);
    ASSERT_TRUE(vistrel.isReleased(control, ApplicationOnDesktop::nineScanCode));
    // The window manager has the bare key itself.
    input.chord(Modifier::shift, Key::printScreen);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shortcutChanged"), 4));
    input.key(Key::returnKey); // Apply
    ASSERT_TRUE(vistrel.closes(setupWindow));
    ASSERT_TRUE(waitUntil([&] { return vistrel.defaults()[QLatin1StringView("onboardingVersion")] == 2; }));
    EXPECT_EQ(vistrel.defaults()[QLatin1StringView("onboardingComplete")], true);
    EXPECT_FALSE(vistrel.defaults().contains(QLatin1StringView("screenAccessSetupPending")));
    EXPECT_FALSE(vistrel.actions().contains(QStringLiteral("captureRequested")));
    EXPECT_EQ(vistrel.end(), 0);

    vistrel.start();
    EXPECT_EQ(vistrel.storedShortcut(), QStringLiteral("512+Print Screen"));
    input.chord(Modifier::shift, Key::printScreen);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureReady")));
    EXPECT_FALSE(vistrel.isOpen(setupWindow) || vistrel.isOpen(settingsWindow));
}

TEST(ApplicationFlow, AnotherProgramsShortcutIsNeverTakenAndCanBeHadOnceItIsFree) {
    ApplicationOnDesktop vistrel(plainDesktop());
    XClient& other = vistrel.session.client();
    ASSERT_EQ(other.grabKey(ApplicationOnDesktop::superShift, ApplicationOnDesktop::nineScanCode), 0);
    vistrel.launch();

    // No panel shows an item here, so a second start is the way in.
    ASSERT_TRUE(waitUntil([&] { return vistrel.runAgain({}) == 0 && vistrel.isOpen(settingsWindow); }));
    ASSERT_TRUE(vistrel.opens(settingsWindow));
    EXPECT_EQ(vistrel.storedShortcut(), QString());
    vistrel.mnemonic(cKey); // Change…
    ASSERT_TRUE(vistrel.opens(setupWindow));
    vistrel.session.input().key(Key::returnKey);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shortcutFailed")));
    EXPECT_EQ(vistrel.details("shortcutFailed")[QLatin1StringView("errorCode")], -9878);
    ASSERT_TRUE(vistrel.opens(alert));
    vistrel.session.input().key(Key::escape);

    other.ungrabKey(ApplicationOnDesktop::superShift, ApplicationOnDesktop::nineScanCode);
    ASSERT_TRUE(vistrel.opens(setupWindow));
    vistrel.session.input().key(Key::returnKey);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shortcutChanged")));
    ASSERT_TRUE(vistrel.opens(settingsWindow)) << "it was left for the setup";
    EXPECT_NE(other.grabKey(ApplicationOnDesktop::superShift, ApplicationOnDesktop::nineScanCode), 0);
    vistrel.session.input().key(Key::escape);
    ASSERT_TRUE(vistrel.closes(settingsWindow));
    EXPECT_TRUE(vistrel.capture());
}

TEST(ApplicationFlow, ADesktopsOwnShortcutIsLeftToItFromTheMomentItIsTaken) {
    if (!QFile::exists(QStringLiteral(
            "/usr/share/glib-2.0/schemas/org.gnome.settings-daemon.plugins.media-keys.gschema.xml")))
        GTEST_SKIP() << "gnome-settings-daemon-common is not installed";
    constexpr KeyCode xKey = 7;
    ApplicationOnDesktop vistrel(plainDesktop(), stored(xKey, commandShift, "X"));
    vistrel.session.setEnvironment("XDG_CURRENT_DESKTOP", "GNOME");
    vistrel.session.setEnvironment("GSETTINGS_BACKEND", "keyfile");
    const auto desktopTakes = [&](const char* accelerator) {
        QDir().mkpath(vistrel.session.configHome() + QStringLiteral("/glib-2.0/settings"));
        QFile file(vistrel.session.configHome() + QStringLiteral("/glib-2.0/settings/keyfile"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[org/gnome/settings-daemon/plugins/media-keys]\nscreensaver=['" +
                   QByteArray(accelerator) + "']\n");
    };

    desktopTakes("<Super><Shift>x");
    vistrel.start();
    // What was stored is the desktop's.
    EXPECT_TRUE(waitUntil([&] { return vistrel.storedShortcut() == QLatin1StringView("768+9"); }));
    ASSERT_TRUE(vistrel.capture());
    vistrel.session.input().key(Key::escape);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));

    desktopTakes("<Super><Shift>9");
    QByteArray printed;
    ASSERT_EQ(vistrel.runAgain({QStringLiteral("--diagnostics")}, &printed), 0);
    EXPECT_TRUE(printed.contains("\nPreferred shortcut conflicts with macOS: false\n"
                                 "Fallback shortcut conflicts with macOS: true\n"))
        << printed.constData();
    // The press is the desktop's now: Vistrel drops the shortcut instead of capturing.
    EXPECT_TRUE(waitUntil([&] {
        vistrel.pressShortcut();
        const bool isFree = vistrel.session.client().grabKey(ApplicationOnDesktop::superShift,
                                                             ApplicationOnDesktop::nineScanCode) == 0;
        if (!isFree && vistrel.waitFor(QStringLiteral("captureRequested")))
            vistrel.session.input().key(Key::escape);
        return isFree;
    }));
    vistrel.session.client().ungrabKey(ApplicationOnDesktop::superShift, ApplicationOnDesktop::nineScanCode);

    ASSERT_EQ(vistrel.runAgain({}), 0);
    ASSERT_TRUE(vistrel.opens(settingsWindow));
    vistrel.mnemonic(cKey);
    ASSERT_TRUE(vistrel.opens(setupWindow));
    vistrel.session.input().key(Key::returnKey);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("shortcutFailed")));
    EXPECT_TRUE(vistrel.opens(alert));
}

TEST(ApplicationFlow, ValuesOfEveryWrongTypeAreAsGoodAsNone) {
    const QJsonValue wrong[] = {QStringLiteral("word"),
                                -1e300,
                                true,
                                QJsonArray{1, 2},
                                QJsonObject{{QStringLiteral("data"), QStringLiteral("AAEC")}},
                                {}};
    ApplicationOnDesktop vistrel(plainDesktop());
    int launches = 0;
    for (const QJsonValue& value : wrong) {
        QJsonObject all;
        for (const char* key :
             {"onboardingVersion", "onboardingComplete", "screenAccessSetupPending", "screenshotShortcuts",
              "screenshotShortcut", "launchAtLoginConfigured", "editorPanelScalePercentV2",
              "editorPanelScalePercent", "doubleClickOutsideToCancel", "downscaleRetinaScreenshots",
              "screenshotSaveFormat", "diagnosticReportInstallationID", "SUEnableAutomaticChecks",
              "SULastCheckTime"})
            all.insert(QLatin1StringView(key), value);
        SCOPED_TRACE(QString::fromUtf8(QJsonDocument(all).toJson(QJsonDocument::Compact)).toStdString());
        vistrel.setDefaults(all);
        vistrel.launch();
        ASSERT_TRUE(vistrel.opens(setupWindow)) << vistrel.program->standardError().constData();
        vistrel.pressShortcut();
        ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureReady"), ++launches));
        EXPECT_TRUE(waitUntil([&] { return vistrel.storedShortcut() == QLatin1StringView("768+9"); }));
        EXPECT_EQ(vistrel.end(), 0);
    }
}

TEST(ApplicationFlow, ReadOnlySettingsAndNeitherBusNorWindowManagerStopNobody) {
    ApplicationOnDesktop vistrel({.screenSize = {1280, 720}});
    QFile::remove(vistrel.defaultsPath());
    // The superuser may write everywhere, so the program is then run as nobody.
    QStringList command;
    if (::geteuid() == 0) {
        const auto given =
            vistrel.session.start(QStringLiteral("chown"),
                                  {QStringLiteral("-R"), QStringLiteral("65534"), vistrel.session.folder()});
        ASSERT_EQ(given->waitForExit(patience), 0);
        command = {QStringLiteral("setpriv"), QStringLiteral("--reuid=65534"),
                   QStringLiteral("--clear-groups")};
    }
    const QString settings = vistrel.session.configHome() + QStringLiteral("/Vistrel");
    for (const QString& folder : {settings, vistrel.session.configHome()})
        ASSERT_TRUE(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    command << vistrel.programPath;
    vistrel.program = vistrel.session.start(command.first(), command.mid(1));
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("launch")));

    ASSERT_TRUE(vistrel.opens(setupWindow));
    vistrel.session.input().key(Key::returnKey);
    ASSERT_TRUE(vistrel.closes(setupWindow));
    EXPECT_TRUE(vistrel.capture());
    vistrel.session.input().key(Key::escape);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));
    // The bus libraries leave a note there about every bus that they launch.
    EXPECT_FALSE(QFile::exists(vistrel.session.folder(QStringLiteral("home/.dbus"))));
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_FALSE(QFile::exists(vistrel.defaultsPath()));
    QFile::setPermissions(vistrel.session.configHome(),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST(ApplicationFlow, MonitorsThatSwapUnderTheSettingsWindowLeaveItReachable) {
    const MonitorSetup small{QStringLiteral("S"), {0, 0, 800, 600}};
    const MonitorSetup large{QStringLiteral("L"), {800, 0, 1280, 720}};
    ApplicationOnDesktop vistrel(
        {.screenSize = {2080, 720}, .monitors = {small, large}, .windowManager = true});
    vistrel.start();
    ASSERT_EQ(vistrel.runAgain({}), 0);
    ASSERT_TRUE(vistrel.opens(settingsWindow));
    const QRect largeFirst{0, 0, 1280, 720};
    const QRect smallSecond{1280, 0, 800, 600};
    // A bare change of the rectangles is no change of the mode, which is what toolkits look for.
    for (const std::vector<MonitorSetup>& monitors :
         {std::vector<MonitorSetup>{{QStringLiteral("B"), {0, 0, 2080, 720}}},
          std::vector<MonitorSetup>{{large.name, largeFirst}, {small.name, smallSecond}}}) {
        const auto changes = vistrel.actions().count(QStringLiteral("displaysChanged"));
        vistrel.session.client().setMonitors(monitors);
        ASSERT_TRUE(vistrel.waitFor(QStringLiteral("displaysChanged"), static_cast<int>(changes) + 1));
    }
    ASSERT_TRUE(vistrel.capture());
    EXPECT_EQ(vistrel.details("captureReady")[QLatin1StringView("displays")], 2);
    for (const QRect display : {largeFirst, smallSecond})
        EXPECT_TRUE(waitUntil([&] {
            const auto windows = vistrel.session.client().mappedWindows();
            return std::ranges::count(windows, display, &MappedWindow::rect) == 1;
        })) << display.x();
    vistrel.session.input().key(Key::escape);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));
    const auto window = vistrel.session.client().windowTitled(settingsWindow);
    ASSERT_TRUE(window);
    EXPECT_TRUE(largeFirst.intersects(window->rect) || smallSecond.intersects(window->rect));
}

TEST(ApplicationFlow, ThePreviewShowsTheOverlayAndASecondStartLeavesItThere) {
    ApplicationOnDesktop vistrel(plainDesktop());
    vistrel.program = vistrel.startProgram({QStringLiteral("--preview-overlay")});
    const auto overlays = [&] {
        const auto windows = vistrel.session.client().mappedWindows();
        return std::ranges::count_if(windows, [](const MappedWindow& window) {
            return window.overrideRedirect && window.rect == QRect(0, 0, 1280, 720);
        });
    };
    ASSERT_TRUE(waitUntil([&] {
        const auto windows = vistrel.session.client().mappedWindows();
        return overlays() == 1 && vistrel.session.client().focusedWindow() == windows.back().id;
    }));
    EXPECT_FALSE(vistrel.isOpen(setupWindow) || vistrel.isOpen(settingsWindow));
    ASSERT_TRUE(waitUntil([&] {
        vistrel.session.input().key(Key::escape);
        return overlays() == 0;
    }));

    ASSERT_TRUE(vistrel.capture());
    vistrel.session.input().drag({100, 100}, {300, 250});
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("selectionCreated")));
    EXPECT_EQ(vistrel.runAgain({}), 0);
    vistrel.command('c');
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("copySucceeded"))) << "the capture went on";
    EXPECT_FALSE(vistrel.isOpen(settingsWindow));
}

TEST(ApplicationFlow, AnotherProgramsOpenMenuIsInThePicture) {
    VistrelOnDesktop vistrel(plainDesktop());
    vistrel.start();
    XClient& other = vistrel.session.client();
    const xcb_window_t menu = other.createWindow({.rect = {400, 300, 160, 200}, .color = 0xFF2060C0});
    other.map(menu);
    ASSERT_TRUE(other.grabKeyboard());
    vistrel.pressShortcut();
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureRequested")));
    EXPECT_TRUE(waitUntil([&] {
        return std::abs(qBlue(other.pixelAt({480, 400})) - qBlue(dimmed(0xFF2060C0))) <= 1;
    }));
    // It goes as menus do; the picture keeps it.
    other.ungrabKeyboard();
    other.destroy(menu);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureReady")));
    vistrel.session.input().drag({420, 320}, {520, 420});
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("selectionCreated")));
    vistrel.command('c');
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("copySucceeded")));
    EXPECT_EQ(vistrel.clipboardImage().pixel(50, 50), 0xFF2060C0);
}

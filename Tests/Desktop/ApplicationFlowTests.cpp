#include "Desktop/VistrelOnDesktop.h"
#include "Support/Provided.h"
#include "Support/TestFiles.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using Vistrel = VistrelOnDesktop;

constexpr KeyCode cKey = 8;
constexpr KeyCode dKey = 2;
constexpr KeyCode nineKey = 25;
constexpr KeyCode uKey = 32;
constexpr ModifierMask commandShift = Modifier::command | Modifier::shift;
constexpr ServerChord superShift9;

} // namespace

TEST(ApplicationFlow, AFreshHomeIsSetUpByKeyboardAndTheNextLaunchOpensNoWindow) {
    Vistrel vistrel;
    XClient& client = vistrel.session.client();
    QFile::remove(vistrel.defaultsPath());
    vistrel.launch();
    ASSERT_TRUE(vistrel.opens(Vistrel::setupWindow));
    const auto height = [&] {
        const auto window = client.windowTitled(Vistrel::setupWindow);
        return window ? window->rect.height() : 0;
    };
    const int small = height();
    vistrel.key(cKey, Modifier::option); // a custom shortcut
    ASSERT_TRUE(waitUntil([&] { return height() > small; })) << "the recorder appears";
    vistrel.key(tabKey);

    // Records what is pressed, once the recorder has let go of the present shortcut.
    const auto record = [&](ServerChord present, ModifierMask modifiers, KeyCode key) {
        vistrel.key(spaceKey);
        EXPECT_TRUE(waitUntil([&] { return vistrel.isFree(present); }));
        vistrel.key(key, modifiers);
    };
    record(superShift9, commandShift, nineKey); // recorded, not obeyed
    ASSERT_TRUE(vistrel.waitFor("shortcutChanged"));
    // The window manager's own chord reaches the recorder too, and stays the window manager's.
    record(superShift9, Modifier::command, dKey);
    ASSERT_TRUE(vistrel.waitFor("shortcutFailed") && vistrel.opens(Vistrel::alert));
    EXPECT_EQ(client.windowProperty(client.root(), "_NET_SHOWING_DESKTOP"), std::vector<std::uint32_t>{0});
    vistrel.key(Key::returnKey);
    ASSERT_TRUE(vistrel.opens(Vistrel::setupWindow));
    EXPECT_TRUE(waitUntil([&] { return vistrel.storedShortcut() == u"768+9"_s; }));
    record(superShift9, 0, uKey); // refused without a modifier
    vistrel.key(uKey, commandShift);
    ASSERT_TRUE(vistrel.waitFor("shortcutChanged", 2));
    // Named as the user's keyboard names it.
    const auto layout = vistrel.session.start(u"setxkbmap"_s, {u"-layout"_s, u"fr"_s});
    ASSERT_EQ(layout->waitForExit(patience), 0);
    record({.scanCode = 30}, Modifier::control, nineKey);
    ASSERT_TRUE(vistrel.waitFor("shortcutChanged", 3));
    EXPECT_TRUE(waitUntil([&] { return vistrel.storedShortcut() == u"4096+Ç"_s; }));
    // The window manager has the bare key itself.
    record({.state = XCB_MOD_MASK_CONTROL}, Modifier::shift, Key::printScreen);
    ASSERT_TRUE(vistrel.waitFor("shortcutChanged", 4));
    vistrel.key(Key::returnKey); // Apply
    ASSERT_TRUE(vistrel.closes(Vistrel::setupWindow));
    ASSERT_TRUE(waitUntil([&] { return vistrel.defaults()[u"onboardingVersion"] == 2; }));
    EXPECT_EQ(vistrel.defaults()[u"onboardingComplete"], true);
    EXPECT_FALSE(vistrel.defaults().contains(u"screenAccessSetupPending"));
    EXPECT_EQ(vistrel.count("captureRequested"), 0);
    EXPECT_EQ(vistrel.end(), 0);

    vistrel.start();
    EXPECT_EQ(vistrel.storedShortcut(), u"512+Print Screen"_s);
    vistrel.key(Key::printScreen, Modifier::shift);
    ASSERT_TRUE(vistrel.isReady());
    EXPECT_FALSE(vistrel.isOpen(Vistrel::setupWindow) || vistrel.isOpen(Vistrel::settingsWindow));
    EXPECT_EQ(vistrel.end(), 0);
    vistrel.setDefaults({{u"onboardingVersion"_s, 1}});
    vistrel.launch();
    EXPECT_TRUE(vistrel.opens(Vistrel::setupWindow)) << "an earlier setup asked for less";
}

TEST(ApplicationFlow, AnotherProgramsShortcutIsNeverTakenAndCanBeHadOnceItIsFree) {
    Vistrel vistrel;
    XClient& other = vistrel.session.client();
    ASSERT_EQ(other.grabKey(superShift9.state, superShift9.scanCode), 0);
    vistrel.launch();
    // No panel shows an item here, so a second start is the way in.
    ASSERT_TRUE(
        waitUntil([&] { return vistrel.runAgain() == 0 && vistrel.isOpen(Vistrel::settingsWindow); }));
    ASSERT_TRUE(vistrel.opens(Vistrel::settingsWindow));
    EXPECT_EQ(vistrel.storedShortcut(), QString());
    vistrel.key(cKey, Modifier::option); // Change…
    ASSERT_TRUE(vistrel.opens(Vistrel::setupWindow));
    vistrel.key(Key::returnKey);
    ASSERT_TRUE(vistrel.waitFor("shortcutFailed") && vistrel.opens(Vistrel::alert));
    EXPECT_EQ(vistrel.details("shortcutFailed")[u"errorCode"], -9878);
    vistrel.key(Key::escape);

    other.ungrabKey(superShift9.state, superShift9.scanCode);
    ASSERT_TRUE(vistrel.opens(Vistrel::setupWindow));
    vistrel.key(Key::returnKey);
    ASSERT_TRUE(vistrel.waitFor("shortcutChanged"));
    ASSERT_TRUE(vistrel.opens(Vistrel::settingsWindow)) << "it was left for the setup";
    EXPECT_FALSE(vistrel.isFree());
    vistrel.key(Key::escape);
    ASSERT_TRUE(vistrel.closes(Vistrel::settingsWindow));

    // Another program's open menu, which holds the keyboard, is in the picture and goes as menus do.
    const xcb_window_t menu = other.createWindow({.rect = {400, 300, 160, 200}, .color = 0xFF2060C0});
    other.map(menu);
    ASSERT_TRUE(other.grabKeyboard());
    vistrel.pressShortcut();
    EXPECT_TRUE(waitUntil([&] {
        return std::abs(qBlue(other.pixelAt({480, 400})) - qBlue(dimmed(0xFF2060C0))) <= 1;
    }));
    other.ungrabKeyboard();
    other.destroy(menu);
    ASSERT_TRUE(vistrel.isReady() && vistrel.select({420, 320, 100, 100}));
    EXPECT_EQ(vistrel.copy().pixel(50, 50), 0xFF2060C0);
}

TEST(ApplicationFlow, ADesktopsOwnShortcutIsLeftToItFromTheMomentItIsTaken) {
    if (!provided({"/usr/share/glib-2.0/schemas/org.gnome.settings-daemon.plugins.media-keys.gschema.xml"}))
        return;
    const QByteArray superShiftX = R"([{"keyCode":7,"modifiers":768,"keyLabel":"X"}])";
    Vistrel vistrel(
        plainDesktop(),
        {{u"screenshotShortcuts"_s, QJsonObject{{u"data"_s, QString::fromLatin1(superShiftX.toBase64())}}}});
    vistrel.session.setEnvironment("XDG_CURRENT_DESKTOP", "GNOME");
    vistrel.session.setEnvironment("GSETTINGS_BACKEND", "keyfile");
    const auto desktopTakes = [&](const QByteArray& accelerator) {
        writeFile(vistrel.session.configHome() + u"/glib-2.0/settings/keyfile"_s,
                  "[org/gnome/settings-daemon/plugins/media-keys]\nscreensaver=['" + accelerator + "']\n");
    };
    desktopTakes("<Super><Shift>x");
    vistrel.start();
    // What was stored is the desktop's.
    EXPECT_TRUE(waitUntil([&] { return vistrel.storedShortcut() == u"768+9"_s; }));
    ASSERT_TRUE(vistrel.capture() && vistrel.closeCapture());

    desktopTakes("<Super><Shift>9");
    QByteArray printed;
    ASSERT_EQ(vistrel.runAgain({u"--diagnostics"_s}, &printed), 0);
    EXPECT_TRUE(printed.contains("\nPreferred shortcut conflicts with macOS: false\n"
                                 "Fallback shortcut conflicts with macOS: true\n"))
        << printed.constData();
    // The press is the desktop's now: Vistrel drops the shortcut instead of capturing.
    EXPECT_TRUE(waitUntil([&] {
        vistrel.pressShortcut();
        if (vistrel.isFree())
            return true;
        if (vistrel.waitFor("captureRequested"))
            vistrel.key(Key::escape);
        return false;
    }));
    ASSERT_TRUE(vistrel.openSettings());
    vistrel.key(cKey, Modifier::option);
    ASSERT_TRUE(vistrel.opens(Vistrel::setupWindow));
    vistrel.key(Key::returnKey);
    EXPECT_TRUE(vistrel.waitFor("shortcutFailed") && vistrel.opens(Vistrel::alert));
}

TEST(ApplicationFlow, ValuesOfEveryWrongTypeAreAsGoodAsNone) {
    const QJsonObject binary{{u"data"_s, u"AAEC"_s}};
    Vistrel vistrel;
    for (const QJsonValue& value : {QJsonValue(u"word"_s), QJsonValue(-1e300), QJsonValue(true),
                                    QJsonValue(QJsonArray{1, 2}), QJsonValue(binary), QJsonValue()}) {
        QJsonObject all;
        for (const char* key :
             {"onboardingVersion", "onboardingComplete", "screenAccessSetupPending", "screenshotShortcuts",
              "screenshotShortcut", "launchAtLoginConfigured", "editorPanelScalePercentV2",
              "editorPanelScalePercent", "doubleClickOutsideToCancel", "downscaleRetinaScreenshots",
              "screenshotSaveFormat", "diagnosticReportInstallationID", "SUEnableAutomaticChecks",
              "SULastCheckTime"})
            all.insert(QLatin1String(key), value);
        SCOPED_TRACE(QJsonDocument(all).toJson(QJsonDocument::Compact).toStdString());
        vistrel.setDefaults(all);
        vistrel.launch();
        ASSERT_TRUE(vistrel.opens(Vistrel::setupWindow)) << vistrel.program->standardError().constData();
        ASSERT_TRUE(vistrel.capture());
        EXPECT_TRUE(waitUntil([&] { return vistrel.storedShortcut() == u"768+9"_s; }));
        EXPECT_EQ(vistrel.end(), 0);
    }
}

TEST(ApplicationFlow, ReadOnlySettingsAndNeitherBusNorWindowManagerStopNobody) {
    Vistrel vistrel({.screenSize = {1280, 720}});
    QFile::remove(vistrel.defaultsPath());
    // The superuser may write everywhere, so the program is then run without that right.
    QStringList command{vistrel.programPath};
    if (::geteuid() == 0)
        command = QStringList{u"setpriv"_s, u"--bounding-set=-dac_override,-dac_read_search"_s} + command;
    const QString config = vistrel.session.configHome();
    for (const QString& folder : {config + u"/Vistrel"_s, config})
        ASSERT_TRUE(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    vistrel.program = vistrel.session.start(command.first(), command.mid(1));
    ASSERT_TRUE(vistrel.opens(Vistrel::setupWindow));
    vistrel.key(Key::returnKey);
    ASSERT_TRUE(vistrel.closes(Vistrel::setupWindow));
    EXPECT_TRUE(vistrel.capture() && vistrel.closeCapture());
    // The bus libraries leave a note there about every bus that they launch.
    EXPECT_FALSE(QFile::exists(vistrel.session.folder(u"home/.dbus"_s)));
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_FALSE(QFile::exists(vistrel.defaultsPath()));
    QFile::setPermissions(config, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST(ApplicationFlow, MonitorsThatSwapUnderTheSettingsWindowLeaveItReachable) {
    Vistrel vistrel({.screenSize = {2080, 720},
                     .monitors = {{u"S"_s, {0, 0, 800, 600}}, {u"L"_s, {800, 0, 1280, 720}}},
                     .windowManager = true});
    XClient& client = vistrel.session.client();
    vistrel.start();
    ASSERT_TRUE(vistrel.openSettings());
    const QRect large{0, 0, 1280, 720};
    const QRect small{1280, 0, 800, 600};
    // A bare change of the rectangles is no change of the mode, which is what toolkits look for.
    client.setMonitors({{u"B"_s, {0, 0, 2080, 720}}});
    ASSERT_TRUE(vistrel.waitFor("displaysChanged"));
    client.setMonitors({{u"L"_s, large}, {u"S"_s, small}});
    ASSERT_TRUE(vistrel.waitFor("displaysChanged", 2));
    ASSERT_TRUE(vistrel.capture());
    EXPECT_EQ(vistrel.details("captureReady")[u"displays"], 2);
    for (const QRect display : {large, small})
        EXPECT_TRUE(waitUntil([&] {
            return std::ranges::count(client.mappedWindows(), display, &MappedWindow::rect) == 1;
        })) << display.x();
    ASSERT_TRUE(vistrel.closeCapture());
    const auto window = client.windowTitled(Vistrel::settingsWindow);
    EXPECT_TRUE(window && (large.intersects(window->rect) || small.intersects(window->rect)));
    EXPECT_EQ(vistrel.count("displaysChanged"), 2) << "each settled change is one";
}

TEST(ApplicationFlow, EveryPageFitsASmallScreenOfAnyScale) {
    const std::pair<QSize, QString> rows[] = {{{1366, 768}, u"screen=1.5"_s}, {{1920, 1080}, u"screen=2"_s}};
    for (const auto& [screen, scale] : rows) {
        SCOPED_TRACE(scale.toStdString());
        Vistrel vistrel({.screenSize = screen, .scaleFactors = scale, .windowManager = true});
        const auto fits = [&](const QString& title) {
            vistrel.settled(QRect(QPoint(), screen), 5);
            const auto window = vistrel.session.client().windowTitled(title);
            // What the window manager puts above it belongs to it.
            return window &&
                   QRect(QPoint(0, 12), QPoint(screen.width(), screen.height())).contains(window->rect);
        };
        vistrel.start();
        ASSERT_TRUE(vistrel.openSettings());
        vistrel.key(cKey, Modifier::option); // Change…
        ASSERT_TRUE(vistrel.opens(Vistrel::setupWindow));
        vistrel.key(cKey, Modifier::option); // a custom shortcut
        EXPECT_TRUE(fits(Vistrel::setupWindow));
        vistrel.key(Key::escape);
        ASSERT_TRUE(vistrel.opens(Vistrel::settingsWindow));
        for (int tab = 0; tab < 4; ++tab) {
            EXPECT_TRUE(fits(Vistrel::settingsWindow)) << tab;
            vistrel.key(Key::rightArrow);
        }
    }
}

TEST(ApplicationFlow, ThePreviewShowsTheOverlayAndASecondStartLeavesItThere) {
    Vistrel vistrel;
    vistrel.program = vistrel.startProgram({u"--preview-overlay"_s});
    const auto overlays = [&] {
        return std::ranges::count(vistrel.windows(), QRect(0, 0, 1280, 720), &MappedWindow::rect);
    };
    ASSERT_TRUE(
        waitUntil([&] { return overlays() == 1 && vistrel.focusedRect() == QRect(0, 0, 1280, 720); }));
    EXPECT_FALSE(vistrel.isOpen(Vistrel::setupWindow) || vistrel.isOpen(Vistrel::settingsWindow));
    ASSERT_TRUE(waitUntil([&] {
        vistrel.key(Key::escape);
        return overlays() == 0;
    }));
    ASSERT_TRUE(vistrel.capture() && vistrel.select({100, 100, 200, 150}));
    EXPECT_EQ(vistrel.runAgain(), 0);
    EXPECT_EQ(vistrel.copy().size(), QSize(200, 150)) << "the capture went on";
    EXPECT_FALSE(vistrel.isOpen(Vistrel::settingsWindow));
}

// What is a whole number of points thin need not be one of pixels.
TEST(ApplicationFlow, TheSettingsKeepTheirDividersAtAFractionalScale) {
    Vistrel vistrel({.screenSize = {1366, 1000},
                     .monitors = {{u"L"_s, {0, 0, 1366, 1000}}},
                     .scaleFactors = u"L=1.25"_s,
                     .windowManager = true});
    vistrel.start();
    ASSERT_TRUE(vistrel.openSettings());
    const auto place = vistrel.session.client().windowTitled(Vistrel::settingsWindow);
    ASSERT_TRUE(place);
    // Inside whatever frames the window.
    const QImage inside = vistrel.settled(place->rect.adjusted(place->rect.width() / 5, 20, -20, -20));
    int dividers = 0;
    QRgb above = 0;
    for (int y = 0; y < inside.height(); ++y) {
        const QImage row = inside.copy(0, y, inside.width() / 2, 1);
        QImage plain = row;
        plain.fill(row.pixel(0, 0));
        if (row != plain)
            continue;
        dividers += qGray(row.pixel(0, 0)) < qGray(above) ? 1 : 0;
        above = row.pixel(0, 0);
    }
    EXPECT_EQ(dividers, 5) << "below title, tabs and shortcut, above the note and above the footer";
}

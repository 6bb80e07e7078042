#include "Vistrel/App/AppControllerFixture.h"

namespace {

using Shortcuts = std::vector<ScreenshotShortcut>;

class AppControllerTest : public ::testing::Test, protected AppControllerFixture {
protected:
    static QStringList words(const char* text) {
        return QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
    }
};

TEST(AppControllerLaunchTest, OpensTheSetupOnlyWhenItIsNeeded) {
    struct LaunchCase {
        const char* name;
        double version;
        bool granted, pending;
        bool opens;
        OnboardingFlow::Step step;
    };
    using Step = OnboardingFlow::Step;
    for (const LaunchCase& row : {LaunchCase{"everythingDone", 2, true, false, false, Step::screenAccess},
                                  {"firstRun", 0, true, false, true, Step::shortcut},
                                  {"olderSetup", 1, false, false, true, Step::screenAccess},
                                  {"permissionLost", 2, false, false, true, Step::screenAccess},
                                  {"requestPending", 2, true, true, true, Step::shortcut}}) {
        SCOPED_TRACE(row.name);
        AppControllerFixture app;
        if (row.version > 0)
            app.defaults.setNumber(QStringLiteral("onboardingVersion"), row.version);
        if (row.pending)
            app.defaults.setBoolean(QStringLiteral("screenAccessSetupPending"), true);
        app.granted = row.granted;
        EXPECT_EQ(app.launch().onboarding().step, row.step);
        EXPECT_EQ(app.takeLog().contains(QStringLiteral("showSetup")), row.opens);
    }
}

TEST_F(AppControllerTest, WithNothingToRegisterTheStoredShortcutStays) {
    completeSetup();
    store(p);
    registrar.refused = {p.keyCode, nine.keyCode};
    const AppController& started = launch();
    EXPECT_EQ(started.shortcutLabel(), QStringLiteral("Not registered"));
    EXPECT_EQ(started.statusMenu().front().title, QStringLiteral("Capture Screenshot  Not registered"));
    EXPECT_EQ(defaults.data(QStringLiteral("screenshotShortcuts")), ScreenshotShortcut::encodeList({p}));
}

TEST_F(AppControllerTest, AChordThatTheDesktopTookIsGivenUpAtThePress) {
    completeSetup();
    store(p);
    const AppController& started = launch();
    desktop.table = std::vector<SystemShortcut>{{p.keyCode, p.modifiers, true}};
    hotkeys.onActivation(CaptureTime::now());
    EXPECT_EQ(hotkeys.shortcuts(), Shortcuts{nine});
    EXPECT_EQ(begun, 1) << "the default is there, so the press is served";

    desktop.table->push_back({nine.keyCode, nine.modifiers, true});
    hotkeys.onActivation(CaptureTime::now());
    EXPECT_EQ(begun, 1);
    EXPECT_EQ(started.shortcutLabel(), QStringLiteral("Not registered"));
}

TEST_F(AppControllerTest, CallbacksOfADestroyedControllerDoNothing) {
    completeSetup();
    launch();
    const auto press = hotkeys.onActivation;
    controller.reset();
    EXPECT_FALSE(hotkeys.onActivation);
    press(CaptureTime::now());
    onNeedsPermission();
    EXPECT_EQ(begun, 0);
}

TEST_F(AppControllerTest, ARefusedShortcutIsToldWithWhatStaysActive) {
    completeSetup();
    AppController& started = launch();
    registrar.refused = {p.keyCode, four.keyCode};
    EXPECT_FALSE(started.choose(p));
    ASSERT_TRUE(started.shortcutAlert());
    const ShortcutSetupAlert first = *started.shortcutAlert();
    EXPECT_EQ(first.message, started.shortcutMessage() + QStringLiteral("\n\nActive in Vistrel: ⇧⌘9."));
    EXPECT_EQ(hotkeys.shortcuts(), Shortcuts{nine});
    EXPECT_EQ(defaults.data(QStringLiteral("screenshotShortcuts")), ScreenshotShortcut::encodeList({nine}));
    EXPECT_FALSE(started.choose(four));
    EXPECT_NE(started.shortcutAlert()->id, first.id);

    hotkeys.unregister();
    EXPECT_FALSE(started.choose(p));
    EXPECT_TRUE(started.shortcutAlert()->message.endsWith(
        QStringLiteral("\n\nNo capture shortcut is active in Vistrel.")));

    registrar.refused.clear();
    EXPECT_TRUE(started.choose(p));
    EXPECT_FALSE(started.shortcutAlert());
}

TEST_F(AppControllerTest, WithoutASettingsPageTheMessageSaysTheWay) {
    AppController& started = make();
    started.openSettings(SettingsPage::keyboardShortcuts);
    EXPECT_EQ(started.shortcutMessage(), QString());
    pages.exist = false;
    started.openSettings(SettingsPage::keyboardShortcuts);
    EXPECT_EQ(started.shortcutMessage(),
              QStringLiteral("Open System Settings, then Keyboard → Keyboard Shortcuts → Screenshots."));
}

TEST_F(AppControllerTest, ThePromptHasTheScreenToItselfUntilItIsAnswered) {
    promptExists = true;
    AppController& started = launch();
    takeLog();
    started.requestPermission();
    started.requestPermission();
    EXPECT_EQ(takeLog(), words("hideSettings hideSetup prompt")) << "one question at a time";
    started.applicationDidBecomeActive();
    EXPECT_EQ(takeLog(), QStringList());
    promptAnswer(false);
    EXPECT_EQ(takeLog(), words("hideSettings showSetup"));
    started.applicationDidBecomeActive();
    EXPECT_EQ(takeLog(), words("close hideSettings showSetup")) << "until the setup is completed";
}

TEST_F(AppControllerTest, SetupIsNotCompletedBeforeItsSteps) {
    registrar.refused = {nine.keyCode};
    AppController& started = launch();
    started.completeOnboarding();
    EXPECT_TRUE(started.firstRun()) << "no permission";
    granted = true;
    started.requestPermission();
    started.completeOnboarding();
    EXPECT_TRUE(started.firstRun()) << "no shortcut";
    ASSERT_TRUE(started.choose(p));
    started.completeOnboarding();
    EXPECT_FALSE(started.firstRun());
}

TEST_F(AppControllerTest, TheShortcutSetupReturnsToTheSettingsItCameFrom) {
    completeSetup();
    AppController& started = launch();
    takeLog();
    started.showCaptureShortcutSetup();
    EXPECT_EQ(takeLog(), words("close hideSettings showSetup"));
    started.completeOnboarding();
    EXPECT_EQ(takeLog(), words("closeSetup hideSetup showSettings")) << "once, not twice";

    started.showCaptureShortcutSetup();
    takeLog();
    started.setupWindowWillClose();
    EXPECT_EQ(takeLog(), words("hideSetup showSettings")) << "closed by the user";
    started.setupWindowWillClose();
    EXPECT_EQ(takeLog(), QStringList());
}

TEST_F(AppControllerTest, BecomingActiveLooksAgain) {
    completeSetup();
    AppController& started = launch();
    takeLog();
    busy = true;
    granted = false;
    started.applicationDidBecomeActive();
    EXPECT_EQ(takeLog(), QStringList()) << "not during a capture";
    busy = false;
    started.applicationDidBecomeActive();
    EXPECT_EQ(takeLog(), words("close hideSettings showSetup"));
}

TEST_F(AppControllerTest, AFailedToggleOffersThePage) {
    completeSetup();
    AppController& started = launch();
    takeLog();
    loginItem.fault = Error{ErrorDomain::system, 13, QStringLiteral("Permission denied")};
    started.toggleLaunchAtLogin();
    EXPECT_EQ(takeLog(), QStringList{QStringLiteral("ask: Permission denied")});
    opensLoginItems = true;
    started.toggleLaunchAtLogin();
    EXPECT_EQ(takeLog(), QStringList{QStringLiteral("ask: Permission denied")});
    EXPECT_EQ(pages.asked, std::vector{SettingsPage::loginItems});
}

} // namespace

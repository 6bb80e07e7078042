#include "Vistrel/App/AppControllerFixture.h"

using namespace Qt::StringLiterals;

namespace {

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
            app.defaults.setNumber(u"onboardingVersion"_s, row.version);
        if (row.pending)
            app.defaults.setBoolean(u"screenAccessSetupPending"_s, true);
        app.granted = row.granted;
        EXPECT_EQ(app.launch().onboarding().step, row.step);
        EXPECT_EQ(app.takeLog().contains(u"showSetup"_s), row.opens);
    }
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
    registrar.refused = {p.keyCode};
    EXPECT_FALSE(started.choose(p));
    const ShortcutSetupAlert first = started.shortcutAlert().value();
    EXPECT_EQ(first.message, started.shortcutMessage() + u"\n\nActive in Vistrel: ⇧⌘9."_s);
    EXPECT_EQ(defaults.data(u"screenshotShortcuts"_s), ScreenshotShortcut::encodeList({nine}));
    hotkeys.unregister();
    EXPECT_FALSE(started.choose(p));
    EXPECT_NE(started.shortcutAlert()->id, first.id);
    EXPECT_TRUE(
        started.shortcutAlert()->message.endsWith(u"\n\nNo capture shortcut is active in Vistrel."_s));
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
              u"Open System Settings, then Keyboard → Keyboard Shortcuts → Screenshots."_s);
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
    loginItem.fault = Error{ErrorDomain::system, 13, u"Permission denied"_s};
    started.toggleLaunchAtLogin();
    EXPECT_EQ(takeLog(), QStringList{u"ask: Permission denied"_s});
    opensLoginItems = true;
    started.toggleLaunchAtLogin();
    EXPECT_EQ(takeLog(), QStringList{u"ask: Permission denied"_s});
    EXPECT_EQ(pages.asked, std::vector{SettingsPage::loginItems});
}

} // namespace

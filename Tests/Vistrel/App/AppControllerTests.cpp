#include "Vistrel/App/AppControllerFixture.h"

#include <QSignalSpy>

namespace {

using Action = Diagnostic::Action;
using Actions = std::vector<Action>;
using Shortcuts = std::vector<ScreenshotShortcut>;

class AppControllerTest : public ::testing::Test, protected AppControllerFixture {
protected:
    static QStringList words(const char* text) {
        return QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
    }
};

// Launch

struct LaunchCase {
    const char* name;
    double version;
    bool granted;
    bool pending;
    const char* calls;
    OnboardingFlow::Step step;
};

void PrintTo(const LaunchCase& row, std::ostream* stream) {
    *stream << row.name;
}

class AppControllerLaunchTest : public ::testing::TestWithParam<LaunchCase>,
                                protected AppControllerFixture {};

TEST_P(AppControllerLaunchTest, OpensTheSetupOnlyWhenItIsNeeded) {
    const LaunchCase& row = GetParam();
    if (row.version > 0)
        defaults.setNumber(QStringLiteral("onboardingVersion"), row.version);
    if (row.pending)
        defaults.setBoolean(QStringLiteral("screenAccessSetupPending"), true);
    granted = row.granted;
    const AppController& started = launch();
    EXPECT_EQ(takeLog().join(u' '), QString::fromLatin1(row.calls));
    EXPECT_EQ(started.onboarding().step, row.step);
    EXPECT_EQ(started.shortcutLabel(), QStringLiteral("⇧⌘9"));
}

const LaunchCase launchCases[] = {
    {"everythingDone", 2, true, false, "prepare", OnboardingFlow::Step::screenAccess},
    {"firstRun", 0, true, false, "prepare close hideSettings showSetup", OnboardingFlow::Step::shortcut},
    {"olderSetup", 1, false, false, "prepare close hideSettings showSetup",
     OnboardingFlow::Step::screenAccess},
    {"permissionLost", 2, false, false, "prepare close hideSettings showSetup",
     OnboardingFlow::Step::screenAccess},
    {"requestPending", 2, true, true, "prepare close hideSettings showSetup", OnboardingFlow::Step::shortcut},
};

INSTANTIATE_TEST_SUITE_P(Table, AppControllerLaunchTest, ::testing::ValuesIn(launchCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(AppControllerTest, TheStoredShortcutIsRegisteredAndKeptUnderBothKeys) {
    completeSetup();
    store(p);
    launch();
    EXPECT_EQ(hotkeys.shortcuts(), Shortcuts{p});
    EXPECT_EQ(defaults.data(QStringLiteral("screenshotShortcut")), p.encode());
    EXPECT_EQ(journalled(), Actions{Action::launch});
}

TEST_F(AppControllerTest, ARefusedStoredShortcutGivesWayToTheDefaultWithoutAWord) {
    completeSetup();
    store(p);
    registrar.refused = {p.keyCode};
    const AppController& started = launch();
    EXPECT_EQ(hotkeys.shortcuts(), Shortcuts{nine});
    EXPECT_EQ(defaults.data(QStringLiteral("screenshotShortcuts")), ScreenshotShortcut::encodeList({nine}));
    EXPECT_TRUE(started.shortcutMessage().startsWith(p.label()));
    EXPECT_FALSE(started.shortcutAlert());
    EXPECT_EQ(takeLog(), words("prepare"));
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

TEST_F(AppControllerTest, OnlyAnInstalledProgramBecomesALoginItem) {
    completeSetup();
    launch(false);
    EXPECT_EQ(loginItem.now, LoginItemStatus::notRegistered);
    launch(true);
    EXPECT_EQ(loginItem.now, LoginItemStatus::enabled);
    EXPECT_EQ(defaults.boolean(QStringLiteral("launchAtLoginConfigured")), true);
}

TEST_F(AppControllerTest, ThePreviewOptionPutsTheWindowsAway) {
    launch(false, {QStringLiteral("vistrel"), QStringLiteral("--preview-overlay")});
    EXPECT_EQ(takeLog(), words("prepare close hideSettings showSetup hideSettings hideSetup preview"));
}

// Captures

TEST_F(AppControllerTest, AHotKeyBeginsAtTheInstantOfThePress) {
    completeSetup();
    launch();
    const CaptureTime::Instant press = CaptureTime::now() - std::chrono::milliseconds(5);
    hotkeys.onActivation(press);
    ASSERT_EQ(begun.size(), 1U);
    EXPECT_EQ(begun[0].at, press);
    ASSERT_TRUE(begun[0].timing);
    EXPECT_EQ(begun[0].timing->start(), press);
    EXPECT_EQ(begun[0].timing->source(), QLatin1StringView("hotkey"));
    ASSERT_EQ(begun[0].timing->phases().size(), 2U);
    EXPECT_EQ(begun[0].timing->phases()[0].name, QLatin1StringView("hotkey_handler_entered"));
    EXPECT_EQ(begun[0].timing->phases()[1].name, QLatin1StringView("shortcut_validation"));
}

TEST_F(AppControllerTest, AChordThatTheDesktopTookIsGivenUpAtThePress) {
    completeSetup();
    store(p);
    const AppController& started = launch();
    desktop.table = std::vector<SystemShortcut>{{p.keyCode, p.modifiers, true}};
    hotkeys.onActivation(CaptureTime::now());
    EXPECT_EQ(hotkeys.shortcuts(), Shortcuts{nine});
    EXPECT_EQ(begun.size(), 1U) << "the default is there, so the press is served";

    desktop.table->push_back({nine.keyCode, nine.modifiers, true});
    hotkeys.onActivation(CaptureTime::now());
    EXPECT_EQ(begun.size(), 1U);
    EXPECT_EQ(started.shortcutLabel(), QStringLiteral("Not registered"));
}

TEST_F(AppControllerTest, CapturingFromTheMenuPutsTheWindowsAwayAndBringsNoTiming) {
    completeSetup();
    launch().perform(StatusMenu::Command::capture);
    EXPECT_EQ(takeLog(), words("prepare hideSettings hideSetup"));
    ASSERT_EQ(begun.size(), 1U);
    EXPECT_FALSE(begun[0].timing);
}

TEST_F(AppControllerTest, ACaptureWithoutPermissionOpensTheSetup) {
    completeSetup();
    const AppController& started = launch();
    takeLog();
    granted = false;
    onNeedsPermission();
    EXPECT_EQ(takeLog(), words("close hideSettings showSetup"));
    EXPECT_FALSE(started.permissionGranted());
}

TEST_F(AppControllerTest, CallbacksOfADestroyedControllerDoNothing) {
    completeSetup();
    launch();
    const auto press = hotkeys.onActivation;
    controller.reset();
    EXPECT_FALSE(hotkeys.onActivation);
    press(CaptureTime::now());
    onNeedsPermission();
    EXPECT_TRUE(begun.empty());
}

TEST_F(AppControllerTest, QuittingClosesTheCaptureAndLetsTheKeysGo) {
    completeSetup();
    launch().perform(StatusMenu::Command::quit);
    EXPECT_EQ(takeLog(), words("prepare close terminate"));
    EXPECT_TRUE(registrar.live.empty());
    controller->applicationWillTerminate();
    EXPECT_EQ(journalled(), (Actions{Action::launch, Action::quit}));
}

// Shortcuts

TEST_F(AppControllerTest, AChosenShortcutReplacesTheOneBefore) {
    completeSetup();
    AppController& started = launch();
    const QSignalSpy menus(&started, &AppController::statusMenuChanged);
    EXPECT_TRUE(started.choose(p));
    EXPECT_EQ(hotkeys.shortcuts(), Shortcuts{p});
    EXPECT_EQ(started.shortcutMessage(), QStringLiteral("Shortcut is ready."));
    EXPECT_EQ(started.statusMenu().front().title, QStringLiteral("Capture Screenshot  ⇧⌘P"));
    EXPECT_EQ(menus.size(), 1);
    EXPECT_EQ(defaults.data(QStringLiteral("screenshotShortcuts")), ScreenshotShortcut::encodeList({p}));
    EXPECT_EQ(journalled(), (Actions{Action::launch, Action::shortcutChanged}));
}

TEST_F(AppControllerTest, ARefusedShortcutIsToldWithWhatStaysActive) {
    completeSetup();
    AppController& started = launch();
    registrar.refused = {p.keyCode, four.keyCode};
    EXPECT_FALSE(started.choose(p));
    EXPECT_TRUE(started.shortcutChangeFailed());
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
    EXPECT_FALSE(started.shortcutChangeFailed());
    const auto events = journal.snapshot().result().events;
    ASSERT_EQ(events.size(), 5U);
    EXPECT_EQ(events[1].action, Action::shortcutFailed);
    EXPECT_EQ(events[1].details.errorKind, Diagnostic::ErrorKind::hotkey);
    EXPECT_EQ(events[1].details.errorCode, hotKeyExists);
}

TEST_F(AppControllerTest, WhileAShortcutIsRecordedTheKeysAreFree) {
    completeSetup();
    AppController& started = launch();
    started.setRecordingShortcut(true);
    EXPECT_TRUE(registrar.live.empty());
    registrar.refused = {nine.keyCode};
    started.setRecordingShortcut(false);
    EXPECT_EQ(started.shortcutLabel(), QStringLiteral("Not registered"));
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

// Permission and setup

TEST_F(AppControllerTest, AGrantedPermissionLeadsToTheShortcutAtOnce) {
    AppController& started = launch();
    takeLog();
    granted = true;
    started.requestPermission();
    EXPECT_EQ(started.onboarding().step, OnboardingFlow::Step::shortcut);
    EXPECT_FALSE(started.screenAccessSetupPending());
    EXPECT_EQ(takeLog(), QStringList());
    EXPECT_EQ(journalled(), (Actions{Action::launch, Action::permissionRequested}));
}

TEST_F(AppControllerTest, WithoutAPromptTheWindowStays) {
    AppController& started = launch();
    takeLog();
    started.requestPermission();
    EXPECT_EQ(takeLog(), QStringList());
    EXPECT_TRUE(started.screenAccessSetupPending());
    EXPECT_EQ(defaults.boolean(QStringLiteral("screenAccessSetupPending")), true);
    EXPECT_EQ(started.onboarding().step, OnboardingFlow::Step::screenAccess);
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

    started.requestPermission();
    granted = true;
    promptAnswer(true);
    EXPECT_EQ(started.onboarding().step, OnboardingFlow::Step::shortcut);
    EXPECT_TRUE(started.needsSetup());
    started.completeOnboarding();
    EXPECT_FALSE(started.needsSetup());
    EXPECT_FALSE(defaults.has(QStringLiteral("screenAccessSetupPending")));
    EXPECT_EQ(defaults.number(QStringLiteral("onboardingVersion")), 2);
    EXPECT_EQ(defaults.boolean(QStringLiteral("onboardingComplete")), true);
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

    started.showCaptureShortcutSetup();
    granted = false;
    started.applicationDidBecomeActive();
    takeLog();
    started.setupWindowWillClose();
    EXPECT_EQ(takeLog(), QStringList()) << "setup is needed again";
}

TEST_F(AppControllerTest, BecomingActiveLooksAgain) {
    completeSetup();
    AppController& started = launch();
    takeLog();
    const QSignalSpy permission(&started, &AppController::permissionGrantedChanged);
    started.applicationDidBecomeActive();
    EXPECT_EQ(permission.size(), 0) << "assigned only when it changed";
    EXPECT_EQ(takeLog(), QStringList());

    busy = true;
    granted = false;
    started.applicationDidBecomeActive();
    EXPECT_EQ(permission.size(), 0) << "not during a capture";
    busy = false;
    started.applicationDidBecomeActive();
    EXPECT_EQ(takeLog(), words("close hideSettings showSetup"));
}

// Launch at login

struct ToggleCase {
    const char* name;
    LoginItemStatus before;
    LoginItemStatus after;
};

void PrintTo(const ToggleCase& row, std::ostream* stream) {
    *stream << row.name;
}

class AppControllerToggleTest : public ::testing::TestWithParam<ToggleCase>,
                                protected AppControllerFixture {};

TEST_P(AppControllerToggleTest, ChangesTheLoginItem) {
    completeSetup();
    loginItem.now = GetParam().before;
    AppController& started = launch();
    takeLog();
    started.perform(StatusMenu::Command::toggleLaunchAtLogin);
    EXPECT_EQ(loginItem.now, GetParam().after);
    EXPECT_EQ(started.statusMenu()[3].check == StatusMenu::Check::on,
              GetParam().after == LoginItemStatus::enabled);
    EXPECT_EQ(takeLog(), QStringList());
}

const ToggleCase toggleCases[] = {
    {"notRegistered", LoginItemStatus::notRegistered, LoginItemStatus::enabled},
    {"notFound", LoginItemStatus::notFound, LoginItemStatus::enabled},
    {"enabled", LoginItemStatus::enabled, LoginItemStatus::notRegistered},
    {"requiresApproval", LoginItemStatus::requiresApproval, LoginItemStatus::notRegistered},
};

INSTANTIATE_TEST_SUITE_P(Table, AppControllerToggleTest, ::testing::ValuesIn(toggleCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(AppControllerTest, AFailedToggleOffersThePage) {
    completeSetup();
    AppController& started = launch();
    takeLog();
    loginItem.fault = Error{ErrorDomain::system, 13, QStringLiteral("Permission denied")};
    started.toggleLaunchAtLogin();
    EXPECT_EQ(takeLog(), QStringList{QStringLiteral("ask: Permission denied")});
    EXPECT_TRUE(pages.asked.empty());
    opensLoginItems = true;
    started.toggleLaunchAtLogin();
    EXPECT_EQ(takeLog(), QStringList{QStringLiteral("ask: Permission denied")});
    EXPECT_EQ(pages.asked, std::vector{SettingsPage::loginItems});
}

} // namespace

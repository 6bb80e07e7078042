#include "Vistrel/App/AppControllerFixture.h"

using namespace Qt::StringLiterals;

namespace {

class AppControllerTest : public ::testing::Test, protected AppControllerFixture {};

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
    EXPECT_EQ(takeLog(), (QStringList{u"close"_s, u"hideSettings"_s, u"showSetup"_s}));
}

} // namespace

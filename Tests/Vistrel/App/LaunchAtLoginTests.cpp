#include "Vistrel/App/AppControllerFixture.h"

using namespace Qt::StringLiterals;

namespace {

enum class Step { first, on, off, toggle };

struct StepCase {
    const char* name;
    LoginItemStatus before;
    Step step;
    LoginItemStatus after;
};

using Status = LoginItemStatus;
const StepCase stepCases[] = {
    {"firstLaunch", Status::notRegistered, Step::first, Status::enabled},
    {"firstLaunchWaiting", Status::requiresApproval, Step::first, Status::requiresApproval},
    {"onWhenWaiting", Status::requiresApproval, Step::on, Status::requiresApproval},
    {"offWhenNotFound", Status::notFound, Step::off, Status::notFound},
    {"offWhenWaiting", Status::requiresApproval, Step::off, Status::notRegistered},
    {"toggleWaiting", Status::requiresApproval, Step::toggle, Status::notRegistered},
    {"toggleOff", Status::notFound, Step::toggle, Status::enabled},
};

class LaunchAtLogin : public testing::Test, protected AppControllerFixture {
protected:
    bool configured() const { return defaults.has(LaunchAtLoginService::configuredKey); }
};

TEST_F(LaunchAtLogin, CallsTheDesktopOnlyWhenSomethingChanges) {
    for (const StepCase& row : stepCases) {
        defaults.remove(LaunchAtLoginService::configuredKey);
        loginItem.now = row.before;
        EXPECT_TRUE(row.step == Step::first    ? login.configureDefault()
                    : row.step == Step::toggle ? login.toggle()
                                               : login.setEnabled(row.step == Step::on))
            << row.name;
        EXPECT_EQ(loginItem.now, row.after) << row.name;
        EXPECT_TRUE(configured()) << row.name;
    }
}

TEST_F(LaunchAtLogin, AFailureIsPassedOnAndTriedAgain) {
    loginItem.fault = Error{ErrorDomain::system, 13, u"Permission denied"_s};
    EXPECT_EQ(login.configureDefault().error().code, 13);
    EXPECT_FALSE(login.setEnabled(true));
    EXPECT_FALSE(configured());
    loginItem.fault.reset();
    EXPECT_TRUE(login.configureDefault());
    EXPECT_EQ(loginItem.now, Status::enabled);
}

} // namespace

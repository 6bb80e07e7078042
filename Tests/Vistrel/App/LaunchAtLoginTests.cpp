#include "App/LaunchAtLoginService.h"

#include "VistrelPlatform/System/FileUserDefaults.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class RecordingItem : public LoginItem {
public:
    LoginItemStatus status() const override { return now; }
    Result<void> enroll() override {
        calls.append(u'+');
        return outcome;
    }
    Result<void> withdraw() override {
        calls.append(u'-');
        return outcome;
    }

    LoginItemStatus now = LoginItemStatus::notRegistered;
    Result<void> outcome;
    QString calls;
};

class LaunchAtLogin : public testing::Test {
protected:
    bool flag() const { return defaults.boolean(LaunchAtLoginService::configuredKey).value_or(false); }

    QTemporaryDir folder;
    FileUserDefaults defaults{folder.filePath(QStringLiteral("defaults.json"))};
    RecordingItem item;
    LaunchAtLoginService service{defaults, item};
};

enum class Step { first, on, off, toggle };

struct StepCase {
    const char* name;
    LoginItemStatus status;
    Step step;
    const char* calls;
};

} // namespace

TEST_F(LaunchAtLogin, CallsTheDesktopOnlyWhenSomethingChanges) {
    using Status = LoginItemStatus;
    for (const StepCase& row : {
             StepCase{"firstLaunch", Status::notRegistered, Step::first, "+"},
             StepCase{"firstLaunchWaiting", Status::requiresApproval, Step::first, ""},
             StepCase{"onWhenEnabled", Status::enabled, Step::on, ""},
             StepCase{"offWhenNotFound", Status::notFound, Step::off, ""},
             StepCase{"offWhenWaiting", Status::requiresApproval, Step::off, "-"},
             StepCase{"toggleWaiting", Status::requiresApproval, Step::toggle, "-"},
             StepCase{"toggleOff", Status::notRegistered, Step::toggle, "+"},
         }) {
        defaults.remove(LaunchAtLoginService::configuredKey);
        item.calls.clear();
        item.now = row.status;
        const Result<void> outcome = row.step == Step::first    ? service.configureDefault()
                                     : row.step == Step::toggle ? service.toggle()
                                                                : service.setEnabled(row.step == Step::on);
        EXPECT_TRUE(outcome) << row.name;
        EXPECT_EQ(item.calls, QLatin1StringView(row.calls)) << row.name;
        EXPECT_TRUE(flag()) << row.name;
    }
}

TEST_F(LaunchAtLogin, AFailureIsPassedOnAndTriedAgain) {
    item.outcome = tl::unexpected(Error{ErrorDomain::system, 13, QStringLiteral("Permission denied")});
    const Result<void> outcome = service.configureDefault();
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().code, 13);
    EXPECT_FALSE(flag());
    EXPECT_FALSE(service.setEnabled(true));
    EXPECT_FALSE(flag());
    item.outcome = {};
    ASSERT_TRUE(service.configureDefault());
    EXPECT_EQ(item.calls, QStringLiteral("+++"));
    EXPECT_TRUE(flag());
}

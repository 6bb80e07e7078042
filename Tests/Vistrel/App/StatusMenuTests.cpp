#include "App/StatusMenu.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(StatusMenuTest, showsTheLoginItem) {
    using Status = LoginItemStatus;
    using Check = StatusMenu::Check;
    for (const auto& [status, check] : {std::pair(Status::notRegistered, Check::off),
                                        {Status::enabled, Check::on},
                                        {Status::requiresApproval, Check::mixed},
                                        {Status::notFound, Check::off}}) {
        QStringList titles;
        for (const StatusMenu::Item& item : StatusMenu::items(u"⇧⌘9 / F13"_s, status)) {
            titles << item.title;
            EXPECT_EQ(item.check,
                      item.command == StatusMenu::Command::toggleLaunchAtLogin ? check : Check::notCheckable);
            EXPECT_EQ(item.enabled, item.title != "Start Recording"_L1);
        }
        const QString approval = check == Check::mixed ? u"Approve Launch at Login…|"_s : QString();
        EXPECT_EQ(titles.join(u'|'), u"Capture Screenshot  ⇧⌘9 / F13|Start Recording|Settings…|"
                                     "Launch at Login|%1|Quit Vistrel"_s.arg(approval));
    }
}

#include "App/StatusMenu.h"

#include <QStringList>

#include <gtest/gtest.h>

TEST(StatusMenuTest, showsTheLoginItem) {
    using Status = LoginItemStatus;
    using Check = StatusMenu::Check;
    for (const auto& [status, check] : {std::pair(Status::notRegistered, Check::off),
                                        {Status::enabled, Check::on},
                                        {Status::requiresApproval, Check::mixed},
                                        {Status::notFound, Check::off}}) {
        QStringList titles;
        for (const StatusMenu::Item& item : StatusMenu::items(QStringLiteral("⇧⌘9 / F13"), status)) {
            titles << item.title;
            EXPECT_EQ(item.check,
                      item.command == StatusMenu::Command::toggleLaunchAtLogin ? check : Check::notCheckable);
            EXPECT_EQ(item.enabled, item.title != QLatin1StringView("Start Recording"));
        }
        const QString approval =
            check == Check::mixed ? QStringLiteral("Approve Launch at Login…|") : QString();
        EXPECT_EQ(titles.join(u'|'), QStringLiteral("Capture Screenshot  ⇧⌘9 / F13|Start Recording|Settings…|"
                                                    "Launch at Login|%1|Quit Vistrel")
                                         .arg(approval));
    }
}

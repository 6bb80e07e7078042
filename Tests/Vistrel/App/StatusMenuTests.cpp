#include "App/StatusMenu.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

struct StatusMenuCase {
    const char* name;
    LoginItemStatus loginItem;
    StatusMenu::Check check;
    bool approval;
};

void PrintTo(const StatusMenuCase& row, std::ostream* stream) {
    *stream << row.name;
}

class StatusMenuTest : public ::testing::TestWithParam<StatusMenuCase> {};

TEST_P(StatusMenuTest, showsTheLoginItem) {
    QStringList titles;
    StatusMenu::Check check = StatusMenu::Check::notCheckable;
    for (const StatusMenu::Item& item :
         StatusMenu::items(QStringLiteral("⇧⌘9 / F13"), GetParam().loginItem)) {
        titles << item.title;
        if (item.command == StatusMenu::Command::toggleLaunchAtLogin)
            check = item.check;
        EXPECT_EQ(item.enabled, item.title != QLatin1StringView("Start Recording"));
    }
    QStringList expected{QStringLiteral("Capture Screenshot  ⇧⌘9 / F13"), QStringLiteral("Start Recording"),
                         QStringLiteral("Settings…"), QStringLiteral("Launch at Login")};
    if (GetParam().approval)
        expected << QStringLiteral("Approve Launch at Login…");
    expected << QString() << QStringLiteral("Quit Vistrel");
    EXPECT_EQ(titles, expected);
    EXPECT_EQ(check, GetParam().check);
}

const StatusMenuCase cases[] = {
    {"notRegistered", LoginItemStatus::notRegistered, StatusMenu::Check::off, false},
    {"enabled", LoginItemStatus::enabled, StatusMenu::Check::on, false},
    {"requiresApproval", LoginItemStatus::requiresApproval, StatusMenu::Check::mixed, true},
    {"notFound", LoginItemStatus::notFound, StatusMenu::Check::off, false},
};

INSTANTIATE_TEST_SUITE_P(Table, StatusMenuTest, ::testing::ValuesIn(cases),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace

#include "App/StatusMenu.h"

namespace StatusMenu {
namespace {

Check loginItemCheck(LoginItemStatus status) {
    if (status == LoginItemStatus::enabled)
        return Check::on;
    return status == LoginItemStatus::requiresApproval ? Check::mixed : Check::off;
}

} // namespace

std::vector<Item> items(const QString& shortcutLabel, LoginItemStatus loginItem) {
    std::vector<Item> menu;
    menu.push_back({.title = QStringLiteral("Capture Screenshot  ") + shortcutLabel,
                    .command = Command::capture,
                    .icon = QStringLiteral("capture"),
                    .symbol = QStringLiteral("camera")});
    menu.push_back({.title = QStringLiteral("Start Recording"),
                    .icon = QStringLiteral("recording"),
                    .symbol = QStringLiteral("record.circle"),
                    .enabled = false});
    menu.push_back({.title = QStringLiteral("Settings…"),
                    .command = Command::settings,
                    .keyEquivalent = QStringLiteral(","),
                    .icon = QStringLiteral("settings"),
                    .symbol = QStringLiteral("gearshape")});
    menu.push_back({.title = QStringLiteral("Launch at Login"),
                    .command = Command::toggleLaunchAtLogin,
                    .icon = QStringLiteral("launch-at-login"),
                    .symbol = QStringLiteral("power"),
                    .check = loginItemCheck(loginItem)});
    if (loginItem == LoginItemStatus::requiresApproval)
        menu.push_back(
            {.title = QStringLiteral("Approve Launch at Login…"), .command = Command::openLoginItems});
    menu.push_back({});
    menu.push_back({.title = QStringLiteral("Quit Vistrel"),
                    .command = Command::quit,
                    .keyEquivalent = QStringLiteral("q"),
                    .icon = QStringLiteral("quit"),
                    .symbol = QStringLiteral("power")});
    return menu;
}

} // namespace StatusMenu

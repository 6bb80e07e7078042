#pragma once

#include "VistrelPlatform/LoginItem.h"

#include <QString>

#include <vector>

/// The status item's menu as a value: what it says, not how it is drawn.
namespace StatusMenu {

enum class Command { none, capture, settings, toggleLaunchAtLogin, openLoginItems, quit };
enum class Check { notCheckable, off, mixed, on };

struct Item {
    /// Empty for a separator.
    QString title{};
    Command command = Command::none;
    /// The key that works together with the command modifier; empty for none.
    QString keyEquivalent{};
    QString icon{};
    /// The icon theme's name for what `icon` shows.
    QString symbol{};
    Check check = Check::notCheckable;
    bool enabled = true;

    bool isSeparator() const { return title.isEmpty(); }
    friend bool operator==(const Item&, const Item&) = default;
};

std::vector<Item> items(const QString& shortcutLabel, LoginItemStatus loginItem);

} // namespace StatusMenu

#pragma once

#include "VistrelPlatform/SystemShortcuts.h"

/// One desktop's way to keep its keyboard shortcuts. Main thread.
class ShortcutTable {
public:
    using Entries = std::vector<SystemShortcut>;

    ShortcutTable() = default;
    ShortcutTable(const ShortcutTable&) = delete;
    ShortcutTable& operator=(const ShortcutTable&) = delete;
    virtual ~ShortcutTable() = default;

    virtual Result<Entries> read() = 0;
};

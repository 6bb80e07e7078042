#pragma once

#include "VistrelPlatform/Keyboard.h"
#include "VistrelPlatform/Result.h"

#include <vector>

/// One chord that the desktop itself uses.
struct SystemShortcut {
    KeyCode keyCode = 0;
    ModifierMask modifiers = 0;
    bool enabled = true;

    friend bool operator==(const SystemShortcut&, const SystemShortcut&) = default;
};

/// The running desktop's own keyboard shortcuts. Main thread.
class SystemShortcuts {
public:
    SystemShortcuts() = default;
    SystemShortcuts(const SystemShortcuts&) = delete;
    SystemShortcuts& operator=(const SystemShortcuts&) = delete;
    virtual ~SystemShortcuts() = default;

    /// Empty for a desktop without such a table; an error when there is one and it cannot be read.
    virtual Result<std::vector<SystemShortcut>> read() const = 0;
};

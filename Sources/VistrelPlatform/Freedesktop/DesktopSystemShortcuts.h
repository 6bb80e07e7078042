#pragma once

#include "VistrelPlatform/DesktopLibrary.h"
#include "VistrelPlatform/Freedesktop/DesktopName.h"
#include "VistrelPlatform/KeyboardLayout.h"
#include "VistrelPlatform/SystemShortcuts.h"

#include <QDBusConnection>

#include <chrono>
#include <memory>

class ShortcutTable;

/// The running desktop's own shortcuts, from wherever that desktop keeps them. Main thread.
class DesktopSystemShortcuts : public SystemShortcuts {
public:
    /// Where a table can be kept. Whoever is asked is first needed when the table is first read.
    struct Sources {
        QDBusConnection sessionBus;
        DesktopLibrarySource library;
    };

    /// `keyboard` is borrowed and outlives this object. A service that is asked may take `longestWait`.
    DesktopSystemShortcuts(Desktop desktop, const Sources& sources, const KeyboardLayout& keyboard,
                           std::chrono::milliseconds longestWait = std::chrono::milliseconds(500));
    ~DesktopSystemShortcuts() override;

    Result<std::vector<SystemShortcut>> read() const override;

private:
    std::unique_ptr<ShortcutTable> table;
};

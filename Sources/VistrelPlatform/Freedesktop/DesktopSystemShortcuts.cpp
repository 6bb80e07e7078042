#include "VistrelPlatform/Freedesktop/DesktopSystemShortcuts.h"

#include "VistrelPlatform/Freedesktop/GSettingsShortcutTable.h"
#include "VistrelPlatform/Freedesktop/KGlobalAccelShortcutTable.h"
#include "VistrelPlatform/Freedesktop/XfconfShortcutTable.h"

namespace {

std::unique_ptr<ShortcutTable> tableOf(Desktop desktop, const DesktopSystemShortcuts::Sources& sources,
                                       const KeyboardLayout& keyboard,
                                       std::chrono::milliseconds longestWait) {
    switch (desktop) {
    case Desktop::gnome:
    case Desktop::cinnamon:
    case Desktop::mate:
        return std::make_unique<GSettingsShortcutTable>(desktop, sources.library, keyboard);
    case Desktop::kde:
        return std::make_unique<KGlobalAccelShortcutTable>(sources.sessionBus, keyboard, longestWait);
    case Desktop::xfce:
        return std::make_unique<XfconfShortcutTable>(sources.sessionBus, keyboard, longestWait);
    case Desktop::lxqt:
    case Desktop::unknown:
        break;
    }
    return nullptr;
}

} // namespace

DesktopSystemShortcuts::DesktopSystemShortcuts(Desktop desktop, const Sources& sources,
                                               const KeyboardLayout& keyboard,
                                               std::chrono::milliseconds longestWait)
    : table(tableOf(desktop, sources, keyboard, longestWait)) {}

DesktopSystemShortcuts::~DesktopSystemShortcuts() = default;

Result<std::vector<SystemShortcut>> DesktopSystemShortcuts::read() const {
    return table ? table->read() : std::vector<SystemShortcut>{};
}

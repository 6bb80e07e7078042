#include "VistrelPlatform/Freedesktop/DesktopSystemShortcuts.h"

#include "VistrelPlatform/Freedesktop/GSettingsShortcutTable.h"
#include "VistrelPlatform/Freedesktop/KGlobalAccelShortcutTable.h"
#include "VistrelPlatform/Freedesktop/XfconfShortcutTable.h"

namespace {

std::unique_ptr<ShortcutTable> tableOf(Desktop desktop, const QDBusConnection& bus,
                                       const KeyboardLayout& keyboard,
                                       std::chrono::milliseconds longestWait) {
    switch (desktop) {
    case Desktop::gnome:
    case Desktop::cinnamon:
    case Desktop::mate:
        return std::make_unique<GSettingsShortcutTable>(desktop, keyboard);
    case Desktop::kde:
        return std::make_unique<KGlobalAccelShortcutTable>(bus, keyboard, longestWait);
    case Desktop::xfce:
        return std::make_unique<XfconfShortcutTable>(bus, keyboard, longestWait);
    case Desktop::lxqt:
    case Desktop::unknown:
        break;
    }
    return nullptr;
}

} // namespace

DesktopSystemShortcuts::DesktopSystemShortcuts(Desktop desktop, const QDBusConnection& sessionBus,
                                               const KeyboardLayout& keyboard,
                                               std::chrono::milliseconds longestWait)
    : table(tableOf(desktop, sessionBus, keyboard, longestWait)) {}

DesktopSystemShortcuts::~DesktopSystemShortcuts() = default;

Result<std::vector<SystemShortcut>> DesktopSystemShortcuts::read() const {
    return table ? table->read() : std::vector<SystemShortcut>{};
}

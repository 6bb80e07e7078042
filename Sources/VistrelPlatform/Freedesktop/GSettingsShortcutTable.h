#pragma once

#include "VistrelPlatform/Freedesktop/DesktopName.h"
#include "VistrelPlatform/Freedesktop/ShortcutTable.h"
#include "VistrelPlatform/KeyboardLayout.h"

#include <memory>
#include <vector>

/// The shortcuts of GNOME, Cinnamon and MATE, which live in settings schemas. Reading takes the values as
/// they are at that moment, from this process's own view of the store: nobody is asked. Main thread.
class GSettingsShortcutTable : public ShortcutTable {
public:
    GSettingsShortcutTable(Desktop desktop, const KeyboardLayout& keyboard);
    ~GSettingsShortcutTable() override;

    Result<Entries> read() override;

private:
    class Schema;

    const KeyboardLayout& layout;
    std::vector<std::unique_ptr<Schema>> schemas;
    /// Shortcuts that the user added, one object of the same schema each.
    std::unique_ptr<Schema> additions;
};

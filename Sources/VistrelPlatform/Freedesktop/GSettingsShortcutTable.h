#pragma once

#include "VistrelPlatform/DesktopLibrary.h"
#include "VistrelPlatform/Freedesktop/DesktopName.h"
#include "VistrelPlatform/Freedesktop/ShortcutTable.h"
#include "VistrelPlatform/KeyboardLayout.h"

#include <memory>
#include <vector>

/// The shortcuts of GNOME, Cinnamon and MATE, which live in settings schemas. Reading takes the values as
/// they are at that moment; the first reading loads the desktop's library. Main thread.
class GSettingsShortcutTable : public ShortcutTable {
public:
    GSettingsShortcutTable(Desktop desktop, DesktopLibrarySource source, const KeyboardLayout& keyboard);

    Result<Entries> read() override;

private:
    Result<void> findSchemas();

    Desktop desktop;
    DesktopLibrarySource library;
    const KeyboardLayout& layout;
    bool found = false;
    std::vector<std::unique_ptr<SettingsSchema>> schemas;
    /// Shortcuts that the user added, one object of the same schema each.
    std::unique_ptr<SettingsSchema> additions;
};

#pragma once

#include <QString>

#include <vector>

/// One line of the reference of overlay shortcuts. Identified by its title.
struct EditorShortcutEntry {
    QString title;
    QString keys;

    friend bool operator==(const EditorShortcutEntry&, const EditorShortcutEntry&) = default;

    static std::vector<EditorShortcutEntry> tools();
    static std::vector<EditorShortcutEntry> actions();
};

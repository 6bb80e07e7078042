#include "Settings/Windows/EditorShortcutEntry.h"

#include "Annotations/AnnotationTool.h"

std::vector<EditorShortcutEntry> EditorShortcutEntry::tools() {
    std::vector<EditorShortcutEntry> entries;
    entries.reserve(AnnotationTools::displayOrder.size());
    for (const AnnotationTool tool : AnnotationTools::displayOrder)
        entries.push_back({AnnotationTools::title(tool), QString(AnnotationTools::key(tool).toUpper())});
    return entries;
}

std::vector<EditorShortcutEntry> EditorShortcutEntry::actions() {
    return {
        {QStringLiteral("Copy and close"), QStringLiteral("⌘C")},
        {QStringLiteral("Save"), QStringLiteral("⌘S")},
        {QStringLiteral("Undo"), QStringLiteral("⌘Z")},
        {QStringLiteral("Redo"), QStringLiteral("⇧⌘Z")},
        {QStringLiteral("Size"), QStringLiteral("+ / −")},
        {QStringLiteral("Select display"), QStringLiteral("⌘A")},
        {QStringLiteral("Delete layer"), QStringLiteral("⌫")},
        {QStringLiteral("Move"), QStringLiteral("← ↑ ↓ →")},
        {QStringLiteral("Move 10 points"), QStringLiteral("⇧ + arrows")},
        {QStringLiteral("Finish text"), QStringLiteral("⌘Return")},
        {QStringLiteral("Cancel"), QStringLiteral("Esc")},
    };
}

#include "VistrelPlatform/Freedesktop/GSettingsShortcutTable.h"

#include "VistrelPlatform/Freedesktop/ShortcutNotation.h"

namespace {

std::vector<const char*> schemaNames(Desktop desktop) {
    switch (desktop) {
    case Desktop::gnome:
        return {"org.gnome.desktop.wm.keybindings", "org.gnome.shell.keybindings",
                "org.gnome.mutter.keybindings", "org.gnome.mutter.wayland.keybindings",
                "org.gnome.settings-daemon.plugins.media-keys"};
    case Desktop::cinnamon:
        return {"org.cinnamon.desktop.keybindings", "org.cinnamon.desktop.keybindings.wm",
                "org.cinnamon.desktop.keybindings.media-keys", "org.cinnamon.muffin.keybindings"};
    case Desktop::mate:
        return {"org.mate.Marco.global-keybindings", "org.mate.Marco.window-keybindings",
                "org.mate.SettingsDaemon.plugins.media-keys"};
    default:
        return {};
    }
}

const char* additionsSchema(Desktop desktop) {
    switch (desktop) {
    case Desktop::gnome:
        return "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding";
    case Desktop::cinnamon:
        return "org.cinnamon.desktop.keybindings.custom-keybinding";
    case Desktop::mate:
        return "org.mate.control-center.keybinding";
    default:
        return nullptr;
    }
}

/// The store stops the program over a path of another shape.
bool isSettingsPath(const QString& path) {
    return path.startsWith(u'/') && path.endsWith(u'/') && !path.contains(QLatin1StringView("//"));
}

/// Where the user's own shortcuts lie, from the list that the desktop keeps of them.
QString additionPath(const QByteArray& schema, const QByteArray& key, const QString& entry) {
    if (schema == "org.gnome.settings-daemon.plugins.media-keys" && key == "custom-keybindings")
        return isSettingsPath(entry) ? entry : QString();
    if (schema == "org.cinnamon.desktop.keybindings" && key == "custom-list" && !entry.isEmpty() &&
        !entry.contains(u'/'))
        return QStringLiteral("/org/cinnamon/desktop/keybindings/custom-keybindings/%1/").arg(entry);
    return {};
}

/// MATE keeps no list; its settings program counts up from zero and fills gaps first.
constexpr int mateAdditions = 64;

} // namespace

GSettingsShortcutTable::GSettingsShortcutTable(Desktop running, DesktopLibrarySource source,
                                               const KeyboardLayout& keyboard)
    : desktop(running), library(std::move(source)), layout(keyboard) {}

Result<void> GSettingsShortcutTable::findSchemas() {
    if (found)
        return {};
    const Result<DesktopLibrary*> settings = library();
    if (!settings)
        return tl::unexpected(settings.error());
    for (const char* name : schemaNames(desktop)) {
        if (auto schema = (*settings)->settingsSchema(name))
            schemas.push_back(std::move(schema));
    }
    if (const char* name = additionsSchema(desktop))
        additions = (*settings)->settingsSchema(name);
    found = true;
    return {};
}

Result<ShortcutTable::Entries> GSettingsShortcutTable::read() {
    if (const Result<void> known = findSchemas(); !known)
        return tl::unexpected(known.error());
    Entries entries;
    QStringList paths;
    for (const auto& schema : schemas) {
        schema->eachText({}, [&](const QByteArray& key, const QString& text) {
            if (const auto shortcut = ShortcutNotation::fromAccelerator(text, layout))
                entries.push_back(*shortcut);
            else if (const QString path = additionPath(schema->name(), key, text); !path.isEmpty())
                paths.append(path);
        });
    }
    if (!additions)
        return entries;
    if (desktop == Desktop::mate) {
        for (int i = 0; i < mateAdditions; ++i)
            paths.append(QStringLiteral("/org/mate/desktop/keybindings/custom%1/").arg(i));
    }
    for (const QString& path : std::as_const(paths)) {
        additions->eachText(path.toUtf8(), [&](const QByteArray& key, const QString& text) {
            const auto shortcut = ShortcutNotation::fromAccelerator(text, layout);
            if (shortcut && key == "binding")
                entries.push_back(*shortcut);
        });
    }
    return entries;
}

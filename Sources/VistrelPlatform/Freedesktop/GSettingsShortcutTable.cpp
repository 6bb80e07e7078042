#include "VistrelPlatform/Freedesktop/GSettingsShortcutTable.h"

#include "VistrelPlatform/Freedesktop/ShortcutNotation.h"

#include <gio/gio.h>

#include <map>

namespace {

template<class T>
struct Unref {
    void operator()(T* object) const { g_object_unref(object); }
};
template<class T>
using Owned = std::unique_ptr<T, Unref<T>>;
using Value = std::unique_ptr<GVariant, decltype(&g_variant_unref)>;

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
QString additionPath(const char* schema, const char* key, const QString& entry) {
    if (qstrcmp(schema, "org.gnome.settings-daemon.plugins.media-keys") == 0 &&
        qstrcmp(key, "custom-keybindings") == 0)
        return isSettingsPath(entry) ? entry : QString();
    if (qstrcmp(schema, "org.cinnamon.desktop.keybindings") == 0 && qstrcmp(key, "custom-list") == 0 &&
        !entry.isEmpty() && !entry.contains(u'/'))
        return QStringLiteral("/org/cinnamon/desktop/keybindings/custom-keybindings/%1/").arg(entry);
    return {};
}

/// MATE keeps no list; its settings program counts up from zero and fills gaps first.
constexpr int mateAdditions = 64;

QStringList texts(GVariant* value) {
    QStringList result;
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING)) {
        result.append(QString::fromUtf8(g_variant_get_string(value, nullptr)));
    } else if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING_ARRAY)) {
        gsize count = 0;
        const gchar** strings = g_variant_get_strv(value, &count);
        for (gsize i = 0; i < count; ++i)
            result.append(QString::fromUtf8(strings[i]));
        g_free(strings);
    }
    return result;
}

} // namespace

class GSettingsShortcutTable::Schema {
public:
    /// Null when the desktop's schemas are not installed.
    static std::unique_ptr<Schema> find(const char* name) {
        GSettingsSchemaSource* source = g_settings_schema_source_get_default();
        GSettingsSchema* schema = source ? g_settings_schema_source_lookup(source, name, TRUE) : nullptr;
        return schema ? std::unique_ptr<Schema>(new Schema(schema)) : nullptr;
    }
    ~Schema() {
        g_strfreev(keys);
        g_settings_schema_unref(schema);
    }
    Schema(const Schema&) = delete;
    Schema& operator=(const Schema&) = delete;

    const char* name() const { return g_settings_schema_get_id(schema); }

    /// Every text of every key. `path` is for schemas whose objects lie anywhere; null for the others.
    void eachText(const char* path, const std::function<void(const char* key, const QString&)>& visit) {
        auto [place, isNew] = objects.try_emplace(path ? path : "");
        if (isNew)
            place->second.reset(g_settings_new_full(schema, nullptr, path));
        for (gchar** key = keys; *key; ++key) {
            const Value value(g_settings_get_value(place->second.get(), *key), &g_variant_unref);
            for (const QString& text : texts(value.get()))
                visit(*key, text);
        }
    }

private:
    explicit Schema(GSettingsSchema* found) : schema(found), keys(g_settings_schema_list_keys(found)) {}

    GSettingsSchema* schema;
    gchar** keys;
    std::map<QByteArray, Owned<GSettings>> objects;
};

GSettingsShortcutTable::GSettingsShortcutTable(Desktop desktop, const KeyboardLayout& keyboard)
    : layout(keyboard) {
    for (const char* name : schemaNames(desktop)) {
        if (auto schema = Schema::find(name))
            schemas.push_back(std::move(schema));
    }
    if (const char* name = additionsSchema(desktop))
        additions = Schema::find(name);
}

GSettingsShortcutTable::~GSettingsShortcutTable() = default;

Result<ShortcutTable::Entries> GSettingsShortcutTable::read() {
    Entries entries;
    QStringList paths;
    for (const auto& schema : schemas) {
        schema->eachText(nullptr, [&](const char* key, const QString& text) {
            if (const auto shortcut = ShortcutNotation::fromAccelerator(text, layout))
                entries.push_back(*shortcut);
            else if (const QString path = additionPath(schema->name(), key, text); !path.isEmpty())
                paths.append(path);
        });
    }
    if (!additions)
        return entries;
    if (qstrcmp(additions->name(), additionsSchema(Desktop::mate)) == 0) {
        for (int i = 0; i < mateAdditions; ++i)
            paths.append(QStringLiteral("/org/mate/desktop/keybindings/custom%1/").arg(i));
    }
    for (const QString& path : std::as_const(paths)) {
        additions->eachText(path.toUtf8().constData(), [&](const char* key, const QString& text) {
            const auto shortcut = ShortcutNotation::fromAccelerator(text, layout);
            if (shortcut && qstrcmp(key, "binding") == 0)
                entries.push_back(*shortcut);
        });
    }
    return entries;
}

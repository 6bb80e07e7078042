#include "VistrelPlatform/Gio/GioSettingsSchema.h"

#include <QStringList>

namespace {

using Value = std::unique_ptr<GVariant, decltype(&g_variant_unref)>;

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

std::unique_ptr<GioSettingsSchema> GioSettingsSchema::find(const QByteArray& name) {
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    GSettingsSchema* found =
        source ? g_settings_schema_source_lookup(source, name.constData(), TRUE) : nullptr;
    return found ? std::unique_ptr<GioSettingsSchema>(new GioSettingsSchema(found)) : nullptr;
}

GioSettingsSchema::GioSettingsSchema(GSettingsSchema* found)
    : schema(found), keys(g_settings_schema_list_keys(found)) {}

GioSettingsSchema::~GioSettingsSchema() {
    g_strfreev(keys);
    g_settings_schema_unref(schema);
}

QByteArray GioSettingsSchema::name() const {
    return g_settings_schema_get_id(schema);
}

void GioSettingsSchema::eachText(const QByteArray& path, const Visitor& visit) {
    auto [place, isNew] = objects.try_emplace(path);
    if (isNew)
        place->second.reset(
            g_settings_new_full(schema, nullptr, path.isEmpty() ? nullptr : path.constData()));
    for (gchar** key = keys; *key; ++key) {
        const Value value(g_settings_get_value(place->second.get(), *key), &g_variant_unref);
        for (const QString& text : texts(value.get()))
            visit(*key, text);
    }
}

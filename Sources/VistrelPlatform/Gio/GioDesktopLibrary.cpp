#include "VistrelPlatform/Gio/GioDesktopLibrary.h"

#include "VistrelPlatform/Gio/GObjectPointer.h"
#include "VistrelPlatform/Gio/GioSettingsSchema.h"

#include <QUrl>

#include <gio/gdesktopappinfo.h>

#include <unordered_set>

namespace {

using DesktopEntry = GObjectPointer<GDesktopAppInfo>;

DesktopEntry desktopEntry(const QString& identifier) {
    return DesktopEntry(g_desktop_app_info_new(identifier.toUtf8().constData()));
}

QIcon iconOf(GAppInfo* application) {
    GIcon* icon = g_app_info_get_icon(application);
    if (icon == nullptr)
        return {};
    if (G_IS_FILE_ICON(icon)) {
        char* path = g_file_get_path(g_file_icon_get_file(G_FILE_ICON(icon)));
        QIcon found(QString::fromUtf8(path));
        g_free(path);
        return found;
    }
    if (!G_IS_THEMED_ICON(icon))
        return {};
    for (const gchar* const* name = g_themed_icon_get_names(G_THEMED_ICON(icon)); *name != nullptr; ++name) {
        QIcon found = QIcon::fromTheme(QString::fromUtf8(*name));
        if (!found.isNull())
            return found;
    }
    return {};
}

void rememberProcess(GDesktopAppInfo*, GPid pid, gpointer processID) {
    *static_cast<GPid*>(processID) = pid;
}

} // namespace

std::vector<DesktopLibrary::Application> GioDesktopLibrary::applicationsOpening(const QByteArray& type) {
    std::vector<Application> found;
    std::unordered_set<std::string> seen;
    const auto add = [&](GAppInfo* application) {
        const char* identifier = g_app_info_get_id(application);
        if (identifier == nullptr || !seen.insert(identifier).second)
            return;
        found.push_back({QString::fromUtf8(identifier),
                         QString::fromUtf8(g_app_info_get_display_name(application)), iconOf(application),
                         g_app_info_supports_uris(application) || g_app_info_supports_files(application)});
    };
    if (const GObjectPointer<GAppInfo> preferred(g_app_info_get_default_for_type(type.constData(), FALSE));
        preferred)
        add(preferred.get());
    GList* all = g_app_info_get_all_for_type(type.constData());
    for (GList* entry = all; entry != nullptr; entry = entry->next)
        add(static_cast<GAppInfo*>(entry->data));
    g_list_free_full(all, g_object_unref);
    return found;
}

bool GioDesktopLibrary::opensAddresses(const QByteArray& scheme) {
    const GObjectPointer<GAppInfo> program(g_app_info_get_default_for_uri_scheme(scheme.constData()));
    return program != nullptr;
}

std::optional<DesktopLibrary::Activation> GioDesktopLibrary::activation(const QString& identifier) {
    const DesktopEntry application = desktopEntry(identifier);
    if (!application)
        return std::nullopt;
    return g_desktop_app_info_get_boolean(application.get(), "DBusActivatable") ? Activation::bus
                                                                                : Activation::command;
}

qint64 GioDesktopLibrary::launch(const QString& identifier, const QString& file, const QString& startupID) {
    const DesktopEntry application = desktopEntry(identifier);
    if (!application)
        return 0;
    const GObjectPointer<GAppLaunchContext> context(g_app_launch_context_new());
    g_app_launch_context_setenv(context.get(), "DESKTOP_STARTUP_ID", startupID.toUtf8().constData());
    QByteArray address = QUrl::fromLocalFile(file).toEncoded();
    GList addresses{address.data(), nullptr, nullptr};
    GPid pid = 0;
    GError* error = nullptr;
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD);
    const gboolean launched = g_desktop_app_info_launch_uris_as_manager(
        application.get(), &addresses, context.get(), flags, nullptr, nullptr, rememberProcess, &pid, &error);
    g_clear_error(&error);
    return launched ? pid : 0;
}

std::unique_ptr<SettingsSchema> GioDesktopLibrary::settingsSchema(const QByteArray& name) {
    return GioSettingsSchema::find(name);
}

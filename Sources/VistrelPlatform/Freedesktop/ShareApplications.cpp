#include "VistrelPlatform/Freedesktop/ShareApplications.h"

#include "VistrelPlatform/CaptureTime.h"
#include "VistrelPlatform/Freedesktop/ShareStart.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFileInfo>
#include <QTimer>
#include <QUrl>

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <unordered_set>

namespace {

struct ReleaseObject {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template<class T>
using GObjectPointer = std::unique_ptr<T, ReleaseObject>;

constexpr const char* pictureType = "image/png";

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

/// Tells the window manager that the program's first window answers the user's click of this moment.
/// X servers and desktops here count the same milliseconds as the host clock.
QString startupIdentifier() {
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(CaptureTime::hostTime()).count();
    return QStringLiteral("vistrel-%1-share_TIME%2")
        .arg(QCoreApplication::applicationPid())
        .arg(static_cast<quint32>(milliseconds));
}

void rememberProcess(GDesktopAppInfo*, GPid pid, gpointer processID) {
    *static_cast<GPid*>(processID) = pid;
}

/// The child's number, 0 when nothing was started.
GPid launch(GDesktopAppInfo* application, const QString& path) {
    const GObjectPointer<GAppLaunchContext> context(g_app_launch_context_new());
    g_app_launch_context_setenv(context.get(), "DESKTOP_STARTUP_ID",
                                startupIdentifier().toUtf8().constData());
    QByteArray address = QUrl::fromLocalFile(path).toEncoded();
    GList addresses{address.data(), nullptr, nullptr};
    GPid pid = 0;
    GError* error = nullptr;
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD);
    const gboolean launched = g_desktop_app_info_launch_uris_as_manager(
        application, &addresses, context.get(), flags, nullptr, nullptr, rememberProcess, &pid, &error);
    g_clear_error(&error);
    return launched ? pid : 0;
}

} // namespace

ShareApplications::ShareApplications(QDBusConnection sessionBus, ShareRetention& pictures)
    : bus(std::move(sessionBus)), retention(pictures) {}

bool ShareApplications::mailProgramInstalled() {
    const GObjectPointer<GAppInfo> program(g_app_info_get_default_for_uri_scheme("mailto"));
    return program != nullptr;
}

std::vector<ShareService> ShareApplications::services() {
    std::vector<ShareService> found;
    std::unordered_set<std::string> seen{"com.orvane.Vistrel.desktop"};
    const auto add = [&](GAppInfo* application) {
        const char* identifier = g_app_info_get_id(application);
        if (identifier == nullptr || !seen.insert(identifier).second)
            return;
        found.push_back({QString::fromUtf8(identifier),
                         QString::fromUtf8(g_app_info_get_display_name(application)), iconOf(application),
                         g_app_info_supports_uris(application) || g_app_info_supports_files(application)});
    };
    if (const GObjectPointer<GAppInfo> preferred(g_app_info_get_default_for_type(pictureType, FALSE));
        preferred)
        add(preferred.get());
    GList* all = g_app_info_get_all_for_type(pictureType);
    for (GList* entry = all; entry != nullptr; entry = entry->next)
        add(static_cast<GAppInfo*>(entry->data));
    g_list_free_full(all, g_object_unref);
    return found;
}

void ShareApplications::perform(const QString& identifier, std::shared_ptr<SharePictureFile> file,
                                ShareServices::Completion completion) {
    // Asked for again: it may have been removed since the menu was shown.
    const GObjectPointer<GDesktopAppInfo> application(
        g_desktop_app_info_new(identifier.toUtf8().constData()));
    if (application && g_desktop_app_info_get_boolean(application.get(), "DBusActivatable")) {
        activate(QFileInfo(identifier).completeBaseName(), std::move(file), std::move(completion));
        return;
    }
    const GPid pid = application ? launch(application.get(), file->path()) : 0;
    if (pid == 0) {
        QTimer::singleShot(0, this, [completion = std::move(completion)] { completion(false); });
        return;
    }
    auto* start = new ShareStart(std::make_unique<ShareProcess>(pid), this);
    start->onDecided = [this, start, file = std::move(file),
                        completion = std::move(completion)](bool started) {
        start->deleteLater();
        if (auto running = start->takeProcess())
            retention.keepWhileRunning(file, std::move(running));
        else if (started)
            retention.keep(file);
        completion(started);
    };
}

void ShareApplications::activate(const QString& application, std::shared_ptr<SharePictureFile> file,
                                 ShareServices::Completion completion) {
    const QString path = QLatin1Char('/') + QString(application)
                                                .replace(QLatin1Char('.'), QLatin1Char('/'))
                                                .replace(QLatin1Char('-'), QLatin1Char('_'));
    QDBusMessage call = QDBusMessage::createMethodCall(
        application, path, QStringLiteral("org.freedesktop.Application"), QStringLiteral("Open"));
    call << QStringList(QString::fromUtf8(QUrl::fromLocalFile(file->path()).toEncoded()))
         << QVariantMap{{QStringLiteral("desktop-startup-id"), startupIdentifier()}};
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher, file = std::move(file), completion = std::move(completion)] {
                watcher->deleteLater();
                const bool opened = !watcher->isError();
                if (opened)
                    retention.keep(file);
                completion(opened);
            });
}

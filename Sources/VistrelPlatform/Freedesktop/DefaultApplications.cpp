#include "VistrelPlatform/Freedesktop/DefaultApplications.h"

#include <array>
#include <cerrno>

namespace {

struct SettingsPage {
    /// Names the desktop goes by, separated by semicolons.
    const char* desktops;
    const char* page;
    const char* frontPage;
};

constexpr std::array pages = {
    SettingsPage{"GNOME;Unity;ubuntu;pop", "gnome-control-center default-apps", "gnome-control-center"},
    SettingsPage{"KDE", "systemsettings kcm_componentchooser", "systemsettings"},
    SettingsPage{"KDE", "systemsettings5 kcm_componentchooser", "systemsettings5"},
    SettingsPage{"X-Cinnamon;Cinnamon", "cinnamon-settings default", "cinnamon-settings"},
    SettingsPage{"MATE", "mate-default-applications-properties", "mate-control-center"},
    SettingsPage{"XFCE", "xfce4-mime-settings", "xfce4-settings-manager"},
    SettingsPage{"LXQt", "lxqt-config-file-associations", "lxqt-config"},
    SettingsPage{"LXDE", "libfm-pref-apps", "lxde-control-center"},
    SettingsPage{"Budgie", "budgie-control-center default-apps", "budgie-control-center"},
};

bool isFor(const SettingsPage& page, const QStringList& running) {
    const QStringList names = QString::fromLatin1(page.desktops).split(QLatin1Char(';'));
    for (const QString& name : names) {
        if (running.contains(name, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

QStringList words(const char* command) {
    return QString::fromLatin1(command).split(QLatin1Char(' '));
}

} // namespace

std::vector<QStringList> DefaultApplications::settingsCommands(const QString& desktop) {
    const QStringList running = desktop.split(QLatin1Char(':'), Qt::SkipEmptyParts);
    std::vector<QStringList> own;
    std::vector<QStringList> fronts;
    std::vector<QStringList> others;
    for (const SettingsPage& page : pages) {
        if (isFor(page, running)) {
            own.push_back(words(page.page));
            fronts.push_back(words(page.frontPage));
        } else {
            others.push_back(words(page.page));
        }
    }
    own.insert(own.end(), fronts.begin(), fronts.end());
    own.insert(own.end(), others.begin(), others.end());
    return own;
}

Result<std::unique_ptr<ShareProcess>> DefaultApplications::openSettings() {
    for (const QStringList& command : settingsCommands(qEnvironmentVariable("XDG_CURRENT_DESKTOP"))) {
        if (auto process = ShareProcess::start(command))
            return process;
    }
    return tl::unexpected(Error{ErrorDomain::system, ENOENT,
                                QStringLiteral("This desktop has no page for default applications.")});
}

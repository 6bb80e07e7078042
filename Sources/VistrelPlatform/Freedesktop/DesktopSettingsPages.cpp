#include "VistrelPlatform/Freedesktop/DesktopSettingsPages.h"

#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <array>

namespace {

struct Row {
    Desktop desktop;
    SettingsPage page;
    /// The program and its arguments.
    const char* command;
};

/// Newer forms come before older ones, the page itself before the programs that list it.
constexpr std::array rows = {
    Row{Desktop::gnome, SettingsPage::keyboardShortcuts, "gnome-control-center keyboard"},
    Row{Desktop::gnome, SettingsPage::screenRecording, "gnome-control-center applications"},
    Row{Desktop::gnome, SettingsPage::loginItems, "gnome-tweaks"},
    Row{Desktop::gnome, SettingsPage::loginItems, "gnome-session-properties"},
    Row{Desktop::gnome, SettingsPage::loginItems, "gnome-control-center applications"},
    Row{Desktop::cinnamon, SettingsPage::keyboardShortcuts, "cinnamon-settings keyboard -t shortcuts"},
    Row{Desktop::cinnamon, SettingsPage::loginItems, "cinnamon-settings startup"},
    Row{Desktop::mate, SettingsPage::keyboardShortcuts, "mate-keybinding-properties"},
    Row{Desktop::mate, SettingsPage::loginItems, "mate-session-properties"},
    Row{Desktop::kde, SettingsPage::keyboardShortcuts, "systemsettings kcm_keys"},
    Row{Desktop::kde, SettingsPage::keyboardShortcuts, "systemsettings5 kcm_keys"},
    Row{Desktop::kde, SettingsPage::keyboardShortcuts, "kcmshell5 kcm_keys"},
    Row{Desktop::kde, SettingsPage::screenRecording, "systemsettings kcm_app-permissions"},
    Row{Desktop::kde, SettingsPage::screenRecording, "systemsettings5 kcm_flatpak"},
    Row{Desktop::kde, SettingsPage::loginItems, "systemsettings kcm_autostart"},
    Row{Desktop::kde, SettingsPage::loginItems, "systemsettings5 kcm_autostart"},
    Row{Desktop::kde, SettingsPage::loginItems, "kcmshell5 kcm_autostart"},
    Row{Desktop::xfce, SettingsPage::keyboardShortcuts, "xfce4-keyboard-settings"},
    Row{Desktop::xfce, SettingsPage::loginItems, "xfce4-session-settings"},
    Row{Desktop::lxqt, SettingsPage::keyboardShortcuts, "lxqt-config-globalkeyshortcuts"},
    Row{Desktop::lxqt, SettingsPage::loginItems, "lxqt-config-session"},
};

} // namespace

DesktopSettingsPages::DesktopSettingsPages() : DesktopSettingsPages(desktopNamed(currentDesktopNames())) {}

DesktopSettingsPages::DesktopSettingsPages(Desktop running) : desktop(running) {}

bool DesktopSettingsPages::has(SettingsPage page) const {
    return !commands(page).empty();
}

bool DesktopSettingsPages::open(SettingsPage page) {
    return std::ranges::any_of(commands(page), [](QStringList command) {
        const QString program = command.takeFirst();
        return QProcess::startDetached(program, command);
    });
}

std::vector<QStringList> DesktopSettingsPages::commands(SettingsPage page) const {
    std::vector<QStringList> installed;
    for (const Row& row : rows) {
        if (row.desktop != desktop || row.page != page)
            continue;
        QStringList command = QString::fromLatin1(row.command).split(u' ');
        command.front() = QStandardPaths::findExecutable(command.front());
        if (!command.front().isEmpty())
            installed.push_back(command);
    }
    return installed;
}

#include "Settings/Windows/SettingsWindow.h"

#include "Settings/Windows/AppPanel.h"

SettingsWindow::SettingsWindow(const PanelSources& given)
    : PanelWindow(QStringLiteral("Vistrel Settings"), given.controller), sources(given) {
    setObjectName(QStringLiteral("settingsWindow"));
}

void SettingsWindow::present(SettingsTab initial) {
    auto* fresh = new AppPanel(QStringLiteral("Vistrel Settings"), sources.version(), this);
    view = new SettingsTabsView(
        sources, initial, [this] { close(); }, fresh);
    fresh->setContent(view);
    setPanel(fresh);
    bringToFront();
}

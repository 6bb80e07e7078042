#pragma once

#include "Settings/Windows/PanelSources.h"
#include "Settings/Windows/PanelWindow.h"
#include "Settings/Windows/SettingsTabsView.h"

/// "Vistrel Settings". Made once; every presentation starts with fresh pages.
class SettingsWindow : public PanelWindow {
    Q_OBJECT
public:
    explicit SettingsWindow(const PanelSources& given);

    void present(SettingsTab initial = SettingsTab::shortcuts);
    SettingsTabsView& tabs() { return *view; }

private:
    const PanelSources& sources;
    SettingsTabsView* view = nullptr;
};

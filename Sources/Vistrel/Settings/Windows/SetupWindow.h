#pragma once

#include "Settings/Windows/OnboardingView.h"
#include "Settings/Windows/PanelWindow.h"

/// "Vistrel Setup". Made once; what it shows is kept while it is visible.
class SetupWindow : public PanelWindow {
    Q_OBJECT
public:
    /// The controller is told whenever the window is closed, by the user or by the program.
    explicit SetupWindow(const PanelSources& given);

    void present();
    OnboardingView& onboarding() { return *view; }

private:
    const PanelSources& sources;
    OnboardingView* view = nullptr;
};

#pragma once

#include "App/OnboardingFlow.h"
#include "Settings/Windows/AppPanel.h"
#include "Settings/Windows/PanelSources.h"

class PageView;

/// The first-run setup: screen access, then the capture shortcut.
class OnboardingView : public AppPanel {
    Q_OBJECT
public:
    explicit OnboardingView(const PanelSources& given, QWidget* parent = nullptr);

    PageView* page() const { return shownPage; }

private:
    void refreshTitle();
    void showStep();

    const PanelSources& sources;
    std::optional<OnboardingFlow::Step> shownStep;
    PageView* shownPage = nullptr;
};

#include "Settings/Windows/OnboardingView.h"

#include "App/AppController.h"
#include "Settings/Windows/PageScroller.h"
#include "Settings/Windows/PrivacyPolicyView.h"
#include "Settings/Windows/ScreenAccessPage.h"
#include "Settings/Windows/ScreenshotShortcutSettings.h"

OnboardingView::OnboardingView(const PanelSources& given, QWidget* parent)
    : AppPanel(QString(), given.version(), parent), sources(given) {
    setObjectName(QStringLiteral("onboarding"));
    AppController& controller = sources.controller;
    connect(&controller, &AppController::firstRunChanged, this, &OnboardingView::refreshTitle);
    connect(&controller, &AppController::onboardingChanged, this, &OnboardingView::showStep);
    showStep();
}

void OnboardingView::refreshTitle() {
    const AppController& controller = sources.controller;
    if (controller.firstRun())
        setTitle(QStringLiteral("Welcome to Vistrel"));
    else if (controller.onboarding().step == OnboardingFlow::Step::screenAccess)
        setTitle(QStringLiteral("Screen Access"));
    else
        setTitle(QStringLiteral("Capture Shortcut"));
}

void OnboardingView::showStep() {
    refreshTitle();
    const OnboardingFlow::Step step = sources.controller.onboarding().step;
    if (shownStep == step)
        return;
    shownStep = step;
    if (step == OnboardingFlow::Step::screenAccess)
        shownPage = new ScreenAccessPage(
            sources.controller, [this] { PrivacyPolicyView::open(sources, *this); }, this);
    else
        shownPage = new ScreenshotShortcutSettings(sources, this);
    auto* scroller = new PageScroller(this);
    scroller->setPage(shownPage);
    setContent(scroller);
}

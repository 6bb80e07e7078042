#include "Settings/Windows/OnboardingView.h"

#include "App/AppController.h"
#include "Settings/Windows/PrivacyPolicyView.h"
#include "Settings/Windows/ScreenAccessPage.h"
#include "Settings/Windows/ScreenshotShortcutSettings.h"
#include "Updates/UpdateService.h"

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
            sources.controller, [this] { showPrivacy(); }, this);
    else
        shownPage = new ScreenshotShortcutSettings(sources, this);
    setContent(shownPage);
}

bool OnboardingView::showingPrivacy() const {
    return findChild<PrivacyPolicyView*>() != nullptr;
}

void OnboardingView::showPrivacy() {
    const QString maker = sources.bundle.string(ApplicationBundle::makerKey).value_or(QString());
    auto* sheet = new PrivacyPolicyView({sources.controller.updates().updateHost(), maker}, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

#include "App/AppController.h"

#include <QPointer>

namespace {

const QString versionKey = QStringLiteral("onboardingVersion");
const QString completeKey = QStringLiteral("onboardingComplete");
const QString pendingKey = QStringLiteral("screenAccessSetupPending");
constexpr double completedVersion = 2;

void call(const std::function<void()>& callback) {
    if (callback)
        callback();
}

} // namespace

void AppController::readSetupState() {
    setFirstRun(services.defaults.number(versionKey).value_or(0) < completedVersion);
    setScreenAccessSetupPending(services.defaults.boolean(pendingKey).value_or(false));
    setPermissionGranted(services.screenAccess.isGranted());
}

void AppController::updatePermission() {
    if (const bool now = services.screenAccess.isGranted(); now != granted)
        setPermissionGranted(now);
}

void AppController::requestPermission() {
    journal(Diagnostic::Action::permissionRequested);
    if (requestingScreenAccess)
        return;
    if (services.screenAccess.isGranted())
        return finishPermissionRequest(true);
    setScreenAccessSetupPending(true);
    services.defaults.setBoolean(pendingKey, true);
    if (!services.screenAccess.prompt)
        return finishPermissionRequest(services.screenAccess.isGranted());
    requestingScreenAccess = true;
    // The question must not stand behind our own windows.
    hideWindows();
    services.screenAccess.prompt([self = QPointer(this)](bool isGranted) {
        if (!self)
            return;
        self->requestingScreenAccess = false;
        self->finishPermissionRequest(isGranted);
        self->presentSetupWindow(false);
    });
}

void AppController::finishPermissionRequest(bool isGranted) {
    setPermissionGranted(isGranted);
    setOnboardingStep(isGranted ? OnboardingFlow::Step::shortcut : OnboardingFlow::Step::screenAccess);
}

void AppController::completeOnboarding() {
    if (registeredShortcuts().empty() || flow.step != OnboardingFlow::Step::shortcut || !granted)
        return;
    if (isFirstRun) {
        services.defaults.setBoolean(completeKey, true);
        services.defaults.setNumber(versionKey, completedVersion);
        setFirstRun(false);
    }
    services.defaults.remove(pendingKey);
    setScreenAccessSetupPending(false);
    const bool returnToSettings = std::exchange(returnToSettingsAfterSetup, false);
    call(presentation.closeSetup);
    if (returnToSettings)
        presentSettingsWindow();
    else
        Q_EMIT onboardingCompleted();
}

void AppController::showCaptureShortcutSetup() {
    setShortcutAlert(std::nullopt);
    setShortcutChangeFailed(false);
    setShortcutMessage(QString());
    session().close();
    presentSetupWindow(true);
}

void AppController::openSettings(SettingsPage page) {
    if (!services.settingsPages.open(page))
        setShortcutMessage(
            QStringLiteral("Open System Settings, then Keyboard → Keyboard Shortcuts → Screenshots."));
}

void AppController::presentSettingsWindow() {
    returnToSettingsAfterSetup = false;
    call(presentation.hideSetup);
    call(presentation.showSettings);
}

void AppController::presentSetupWindow(bool returnToSettings) {
    call(presentation.hideSettings);
    returnToSettingsAfterSetup = returnToSettingsAfterSetup || returnToSettings;
    setOnboardingStep(granted ? OnboardingFlow::Step::shortcut : OnboardingFlow::Step::screenAccess);
    call(presentation.showSetup);
}

void AppController::setupWindowWillClose() {
    if (std::exchange(returnToSettingsAfterSetup, false) && !needsSetup())
        presentSettingsWindow();
}

void AppController::setPermissionGranted(bool isGranted) {
    granted = isGranted;
    Q_EMIT permissionGrantedChanged();
}

void AppController::setFirstRun(bool first) {
    isFirstRun = first;
    Q_EMIT firstRunChanged();
}

void AppController::setScreenAccessSetupPending(bool pending) {
    setupPending = pending;
    Q_EMIT screenAccessSetupPendingChanged();
}

void AppController::setOnboardingStep(OnboardingFlow::Step step) {
    flow.step = step;
    Q_EMIT onboardingChanged();
}

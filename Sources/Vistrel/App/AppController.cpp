#include "App/AppController.h"

#include "App/LaunchAtLoginService.h"
#include "Updates/UpdateService.h"
#include "VistrelPlatform/System/Log.h"

#include <QPointer>
#include <QThreadPool>

namespace {

constexpr int pruningPriority = -1;

void call(const std::function<void()>& callback) {
    if (callback)
        callback();
}

} // namespace

AppController::AppController(Services supplied, QObject* parent)
    : QObject(parent), services(std::move(supplied)) {}

AppController::~AppController() {
    services.hotkeys.onActivation = nullptr;
}

void AppController::applicationDidFinishLaunching() {
    diagnosticSessionStarted = true;
    services.diagnostics.start();
    if (services.pruneReportDrafts)
        QThreadPool::globalInstance()->start(services.pruneReportDrafts, pruningPriority);
    readSetupState();

    services.hotkeys.onActivation = [self = QPointer(this)](CaptureTime::Instant instant) {
        if (self)
            self->hotKeyPressed(instant);
    };
    session().prepareOverlays();
    if (services.installed)
        applyLaunchAtLoginDefault();
    services.updates.start();
    refreshMenu();

    registerStoredShortcuts();
    refreshState();
    if (needsSetup())
        showSettings();
    if (services.arguments.contains(QStringLiteral("--preview-overlay"))) {
        hideWindows();
        session().beginPreview();
    }
    if (services.arguments.contains(QStringLiteral("--capture")))
        captureAsked();
}

void AppController::applicationDidBecomeActive() {
    if (session().busy())
        return;
    updatePermission();
    revalidateShortcuts();
    if ((setupPending || !granted) && !requestingScreenAccess)
        showSettings();
}

void AppController::applicationWillTerminate() {
    services.diagnostics.finish();
}

CaptureSession& AppController::session() {
    if (!captureSession) {
        captureSession = services.makeCaptureSession([self = QPointer(this)] {
            if (self)
                self->showSettings();
        });
    }
    return *captureSession;
}

void AppController::hotKeyPressed(CaptureTime::Instant instant) {
    auto timing = std::make_shared<CaptureTiming>(instant, QStringLiteral("hotkey"));
    timing->recordPhase(QStringLiteral("hotkey_handler_entered"));
    const CaptureTime::Instant before = CaptureTime::now();
    revalidateShortcuts();
    timing->recordPhase(QStringLiteral("shortcut_validation"), {.since = before});
    if (!registeredShortcuts().empty())
        session().begin(instant, std::move(timing));
}

void AppController::captureNow() {
    hideWindows();
    session().begin(CaptureTime::now(), nullptr);
}

void AppController::captureAsked() {
    session().begin(CaptureTime::now(), nullptr);
}

void AppController::showSettings() {
    session().close();
    setPermissionGranted(services.screenAccess.isGranted());
    refreshState();
    if (needsSetup())
        presentSetupWindow(false);
    else
        presentSettingsWindow();
}

void AppController::applyLaunchAtLoginDefault() {
    if (const auto configured = services.launchAtLogin.configureDefault(); !configured)
        qCWarning(vistrelLog, "Vistrel launch at login: %s", qUtf8Printable(configured.error().description));
}

void AppController::toggleLaunchAtLogin() {
    LaunchAtLoginService& login = services.launchAtLogin;
    if (const auto changed = login.toggle(); changed) {
        if (login.status() == LoginItemStatus::requiresApproval)
            openLoginItems();
    } else {
        Notice failure{.text = QStringLiteral("Couldn't change Launch at Login"),
                       .details = changed.error().description};
        if (hasSettings(SettingsPage::loginItems)) {
            failure.choice = QStringLiteral("Open Login Items");
            failure.onChoice = [this] { openLoginItems(); };
        }
        tell(failure);
    }
    refreshMenu();
}

void AppController::openLoginItems() {
    if (!services.settingsPages.open(SettingsPage::loginItems))
        tell({.text = QStringLiteral("This desktop has no settings page for what starts at login"),
              .details = QStringLiteral(
                  "Vistrel’s entry there is switched off. Choose Launch at Login in Vistrel’s menu twice: "
                  "the first time removes the entry, the second adds it anew.")});
}

void AppController::quit() {
    session().close();
    services.hotkeys.unregister();
    call(services.terminate);
}

void AppController::perform(StatusMenu::Command command) {
    switch (command) {
    case StatusMenu::Command::none:
        return;
    case StatusMenu::Command::capture:
        return captureNow();
    case StatusMenu::Command::settings:
        return showSettings();
    case StatusMenu::Command::toggleLaunchAtLogin:
        return toggleLaunchAtLogin();
    case StatusMenu::Command::openLoginItems:
        return openLoginItems();
    case StatusMenu::Command::quit:
        return quit();
    }
}

void AppController::refreshMenu() {
    menu = StatusMenu::items(label, services.launchAtLogin.status());
    Q_EMIT statusMenuChanged();
}

void AppController::hideWindows() {
    call(presentation.hideSettings);
    call(presentation.hideSetup);
}

void AppController::tell(const Notice& notice) {
    if (presentation.tell)
        presentation.tell(notice);
}

void AppController::journal(Diagnostic::Action action, const Diagnostic::Details& details) {
    if (diagnosticSessionStarted)
        services.diagnostics.record(action, details);
}

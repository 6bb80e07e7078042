#include "ResidentProgram.h"

#include "Reports/ReportDraftFiles.h"

#include <QApplication>
#include <QTimer>

#include <cstdlib>

ResidentProgram::ResidentProgram(QStringList commandLine)
    : controller(services(std::move(commandLine))),
      panelSources{controller, bundle, [this] { return makeReportModel(); },
                   [this](KeyCode key) { return keyboard.textOf(key); }},
      statusItem(controller, {&busPanels, &embeddingPanels}, X11Panels::brightness) {
    controller.presentation = presentation();
    updates.mayCheckUnasked = [this] { return !controller.needsSetup(); };
    updates.mayInterrupt = [this] { return !coordinator || !coordinator->busy(); };
    updates.onQuit = [this] { controller.quit(); };
    QObject::connect(&controller, &AppController::onboardingCompleted, &controller,
                     [this] { sayWhereTheProgramIs(); });
    QObject::connect(&signals, &TerminationSignals::received, &controller, &AppController::quit);
    QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &controller,
                     [this](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive)
                             controller.applicationDidBecomeActive();
                     });
    saved = this;
    // What the journal's last line needs of the toolkit has to be older than the handler to outlive it.
    static_cast<void>(QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyy")));
    std::atexit(saveAtExit);
}

ResidentProgram::~ResidentProgram() {
    saved = nullptr;
}

int ResidentProgram::run() {
    QTimer::singleShot(0, &controller, [this] {
        controller.applicationDidFinishLaunching();
        shareServices.removeLeftovers();
    });
    const int status = QCoreApplication::exec();
    controller.applicationWillTerminate();
    return status;
}

void ResidentProgram::saveAtExit() {
    if (!saved)
        return;
    saved->journal.finish();
    saved->defaults.synchronize();
}

void ResidentProgram::activate(const Activation& wanted) {
    switch (wanted.purpose) {
    case Activation::Purpose::comeForward:
        return comeForward();
    case Activation::Purpose::capture:
        return controller.captureAsked();
    }
}

void ResidentProgram::comeForward() {
    // What is being drawn is not thrown away for a second start.
    if (coordinator && coordinator->busy())
        return;
    for (PanelWindow* window :
         {static_cast<PanelWindow*>(settings.get()), static_cast<PanelWindow*>(setup.get())}) {
        if (window && window->isVisible())
            return window->bringToFront();
    }
    // Without a status item this is the only way to the program.
    if (statusItem.isReachable())
        controller.applicationDidBecomeActive();
    else
        controller.showSettings();
}

void ResidentProgram::sayWhereTheProgramIs() {
    if (statusItem.isReachable())
        return;
    notice.tell({.text = QStringLiteral("Vistrel is running"),
                 .details = QStringLiteral("Press %1 to take a screenshot. This desktop shows no status "
                                           "items: start Vistrel once more to see its settings.")
                                .arg(controller.shortcutLabel())});
}

AppController::Services ResidentProgram::services(QStringList commandLine) {
    return {.preferences = preferences,
            .defaults = defaults,
            .hotkeys = hotkeys,
            .launchAtLogin = launchAtLogin,
            .updates = updates,
            .diagnostics = journal,
            .settingsPages = settingsPages,
            .screenAccess = screenAccess(),
            .makeCaptureSession =
                [this](std::function<void()> needsPermission) {
                    return makeCaptureSession(std::move(needsPermission));
                },
            .pruneReportDrafts = [] { ReportDraftFiles::prune(); },
            // Not `quit`, which would ask every window first.
            .terminate = [] { QCoreApplication::exit(); },
            .installed = bundle.isInstalled(),
            .arguments = std::move(commandLine)};
}

ScreenAccessRequest ResidentProgram::screenAccess() {
    ScreenAccessRequest access{[this] { return mayCapture(); }, {}};
    // An X session has no question to ask: the root can be read or it cannot. A sandbox has.
    if (portal)
        access.prompt = [this](std::function<void(bool)> answer) { portal->prompt(std::move(answer)); };
    return access;
}

AppController::Presentation ResidentProgram::presentation() {
    return {.showSettings = [this] { settingsWindow().present(); },
            .hideSettings =
                [this] {
                    if (settings)
                        settings->hide();
                },
            .showSetup = [this] { setupWindow().present(); },
            .hideSetup =
                [this] {
                    if (setup)
                        setup->hide();
                },
            .closeSetup = [this] { setupWindow().reject(); },
            .tell = [this](const Notice& told) { notice.tell(told); }};
}

CaptureSession ResidentProgram::makeCaptureSession(std::function<void()> needsPermission) {
    CaptureSessionCoordinator::Services sessionServices =
        display.sessionServices(screenshots, preferences, &journal);
    sessionServices.share = &shareServices;
    sessionServices.hasPermission = [this] { return mayCapture(); };
    coordinator = std::make_unique<CaptureSessionCoordinator>(std::move(sessionServices));
    coordinator->onNeedsPermission = std::move(needsPermission);
    return operationsOf(*coordinator);
}

std::unique_ptr<ProblemReportModel> ResidentProgram::makeReportModel() {
    return std::make_unique<ProblemReportModel>(ProblemReportModel::Services{
        journal, preferences, defaults, reportSender, [this] { return mayCapture(); }, {}, {}});
}

SettingsWindow& ResidentProgram::settingsWindow() {
    if (!settings)
        settings = std::make_unique<SettingsWindow>(panelSources);
    return *settings;
}

SetupWindow& ResidentProgram::setupWindow() {
    if (!setup)
        setup = std::make_unique<SetupWindow>(panelSources);
    return *setup;
}

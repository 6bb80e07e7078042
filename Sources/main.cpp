#include "App/AppController.h"
#include "App/CaptureBenchmark.h"
#include "App/CommandLineMode.h"
#include "App/CommandLineRunners.h"
#include "App/LaunchAtLoginService.h"
#include "App/LoginItemAlert.h"
#include "App/StatusItem.h"
#include "App/TerminationSignals.h"
#include "Capture/CaptureSessionCoordinator.h"
#include "Capture/OnDemandScreenshotService.h"
#include "Editor/CaptureColorWell.h"
#include "Reports/HTTPSReportSender.h"
#include "Reports/ProblemReportModel.h"
#include "Reports/ReportDraftFiles.h"
#include "Settings/Windows/SettingsWindow.h"
#include "Settings/Windows/SetupWindow.h"
#include "Updates/UpdateProbe.h"
#include "Updates/UpdateService.h"
#include "VistrelPlatform/Freedesktop/AutostartLoginItem.h"
#include "VistrelPlatform/Freedesktop/DesktopRunningInstance.h"
#include "VistrelPlatform/Freedesktop/DesktopSettingsPages.h"
#include "VistrelPlatform/Freedesktop/DesktopSystemShortcuts.h"
#include "VistrelPlatform/Freedesktop/PortalScreenAccess.h"
#include "VistrelPlatform/Freedesktop/SessionBus.h"
#include "VistrelPlatform/Freedesktop/ShareDesktopServices.h"
#include "VistrelPlatform/Freedesktop/StatusNotifierHost.h"
#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/System/LoadableModule.h"
#include "VistrelPlatform/System/Paths.h"
#include "VistrelPlatform/X11/DisplayReachable.h"
#include "VistrelPlatform/X11/X11HotKeyBackend.h"
#include "VistrelPlatform/X11/X11KeyboardLayout.h"
#include "VistrelPlatform/X11/X11OverlayWindows.h"
#include "VistrelPlatform/X11/X11Panels.h"
#include "VistrelPlatform/X11/X11ScreenCapturer.h"
#include "VistrelPlatform/X11/X11ScreenList.h"
#include "VistrelPlatform/X11/X11TrayHost.h"

#include <QApplication>
#include <QTimer>

#include <cstdlib>

namespace {

/// What the toolkit sees of the command line. Its options are not ours: unknown arguments are ignored.
struct ToolkitArguments {
    explicit ToolkitArguments(QByteArray programName)
        : program(std::move(programName)), values{program.data(), nullptr} {}

    QByteArray program;
    int count = 1;
    std::array<char*, 2> values;
};

/// The application object on the X display, whatever the environment would prefer. The variable is put
/// back, so that the programs we start choose for themselves.
template<class Application>
class DisplayApplication {
public:
    explicit DisplayApplication(ToolkitArguments& arguments) {
        const QByteArray preferred = qgetenv(variable);
        qputenv(variable, "xcb");
        application.emplace(arguments.count, arguments.values.data());
        if (preferred.isEmpty())
            qunsetenv(variable);
        else
            qputenv(variable, preferred);
        QCoreApplication::setApplicationName(QStringLiteral("Vistrel"));
        QGuiApplication::setDesktopFileName(QStringLiteral("com.orvane.Vistrel"));
    }

    Application* operator->() { return &*application; }

private:
    static constexpr const char* variable = "QT_QPA_PLATFORM";
    std::optional<Application> application;
};

/// What reads the display, whichever mode needs it.
struct Display {
    X11ScreenList screens;
    X11ScreenCapturer capturer;
    X11OverlayWindows overlayWindows;

    Display() {
        CaptureColorWell::prepareDialog = [this](QWidget& dialog) { overlayWindows.prepareDialog(dialog); };
    }
    ~Display() { CaptureColorWell::prepareDialog = nullptr; }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    CaptureSessionCoordinator::Services sessionServices(ScreenshotCapturing& screenshots,
                                                        EditorPreferences& preferences,
                                                        LocalDiagnostics* journal) {
        return {.screenshots = screenshots,
                .screens = screens,
                .overlayWindows = overlayWindows,
                .preferences = preferences,
                .diagnostics = journal,
                .share = nullptr,
                .hasPermission = [this] { return capturer.hasPermission(); },
                .resetCursor = {},
                .saveMeasurement = {}};
    }
};

/// What most sessions never need, or not at the start, and therefore is loaded when it is first called for.
struct Modules {
    LoadableModule network{QStringLiteral("network")};
    LoadableModule desktop{QStringLiteral("desktop")};

    NetworkSource networkSource() {
        return [this] { return network.get<NetworkServices>(); };
    }
    DesktopLibrarySource desktopSource() {
        return [this] { return desktop.get<DesktopLibrary>(); };
    }
};

/// Null outside a sandbox.
std::unique_ptr<PortalScreenAccess> portalInCharge() {
    const QString sandbox = PortalScreenAccess::sandboxName();
    return sandbox.isEmpty() ? nullptr
                             : std::make_unique<PortalScreenAccess>(QDBusConnection::sessionBus(), sandbox);
}

CaptureSession operationsOf(CaptureSessionCoordinator& coordinator) {
    return {.begin =
                [&coordinator](CaptureTime::Instant at, std::shared_ptr<CaptureTiming> timing) {
                    coordinator.begin(at, std::move(timing));
                },
            .close = [&coordinator] { coordinator.close(); },
            .prepareOverlays = [&coordinator] { coordinator.prepareOverlays(); },
            .beginPreview = [&coordinator] { coordinator.beginPreview(); },
            .busy = [&coordinator] { return coordinator.busy(); }};
}

/// The resident program: every service in the order in which it is needed, and how they are joined.
class ResidentProgram {
public:
    explicit ResidentProgram(QStringList commandLine);
    ~ResidentProgram();

    int run();
    /// The desktop, or another start, asks the program to come forward.
    void comeForward();

private:
    AppController::Services services(QStringList commandLine);
    bool mayCapture() const { return display.capturer.hasPermission() && (!portal || portal->isGranted()); }
    ScreenAccessRequest screenAccess();
    AppController::Presentation presentation();
    CaptureSession makeCaptureSession(std::function<void()> needsPermission);
    std::unique_ptr<ProblemReportModel> makeReportModel();
    SettingsWindow& settingsWindow();
    SetupWindow& setupWindow();
    static void saveAtExit();

    /// The one whose journal is saved when the toolkit ends the process, which it does without returning
    /// here when the connection to the display breaks.
    static inline ResidentProgram* saved = nullptr;

    Modules modules;
    ApplicationBundle bundle;
    FileUserDefaults defaults;
    EditorPreferences preferences{defaults};
    LocalDiagnostics journal{defaults,
                             {Paths::data() + QStringLiteral("/Diagnostics"),
                              bundle.string(ApplicationBundle::shortVersionKey).value_or(QString()),
                              524288,
                              {}}};
    Display display;
    std::unique_ptr<PortalScreenAccess> portal = portalInCharge();
    X11KeyboardLayout keyboard;
    X11HotKeyBackend hotKeyBackend;
    DesktopSystemShortcuts systemShortcuts{desktopNamed(currentDesktopNames()),
                                           {QDBusConnection::sessionBus(), modules.desktopSource()},
                                           keyboard};
    HotKeyService hotkeys{hotKeyBackend, systemShortcuts};
    AutostartLoginItem loginItem;
    LaunchAtLoginService launchAtLogin{defaults, loginItem};
    UpdateService updates{UpdaterConfiguration::ofRunningProgram(modules.networkSource()), defaults};
    DesktopSettingsPages settingsPages;
    HTTPSReportSender reportSender{HTTPSReportSender::endpoint(bundle), modules.networkSource()};
    OnDemandScreenshotService screenshots{display.capturer, CaptureMethod::automatic, preferences};
    ShareDesktopServices shareServices{modules.desktopSource()};
    std::unique_ptr<CaptureSessionCoordinator> coordinator;
    AppController controller;
    PanelSources panelSources;
    std::unique_ptr<SettingsWindow> settings;
    std::unique_ptr<SetupWindow> setup;
    StatusNotifierHost busPanels;
    X11TrayHost embeddingPanels;
    StatusItem statusItem;
    TerminationSignals signals;
};

ResidentProgram::ResidentProgram(QStringList commandLine)
    : controller(services(std::move(commandLine))),
      panelSources{controller, bundle, [this] { return makeReportModel(); },
                   [this](KeyCode key) { return keyboard.textOf(key); }},
      statusItem(controller, {&busPanels, &embeddingPanels}, X11Panels::brightness) {
    controller.presentation = presentation();
    updates.mayCheckUnasked = [this] { return !controller.needsSetup(); };
    updates.mayInterrupt = [this] { return !coordinator || !coordinator->busy(); };
    updates.onQuit = [this] { controller.quit(); };
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
            .askToOpenLoginItems = LoginItemAlert::ask};
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

int reportMissingDisplay() {
    Console::standard().printErrorLine(QStringLiteral(
        "Vistrel needs an X11 display, and none could be reached. Check the DISPLAY variable."));
    return 1;
}

/// Runs the mode that the arguments ask for; each call returns the exit status of the process.
class ModeRunner {
public:
    explicit ModeRunner(QStringList commandLine)
        : arguments(std::move(commandLine)), toolkit(arguments.value(0).toLocal8Bit()) {}

    int operator()(const CommandLineMode::UsageError& error) {
        return CommandLineRunners::reportUsage(error, Console::standard());
    }

    int operator()(const CommandLineMode::CheckUpdateFeed&) {
        const QCoreApplication application(toolkit.count, toolkit.values.data());
        FileUserDefaults defaults;
        Modules modules;
        return UpdateProbe(UpdaterConfiguration::ofRunningProgram(modules.networkSource()), defaults).run();
    }

    int operator()(const CommandLineMode::BenchmarkCapture& mode) {
        if (!isDisplayReachable())
            return reportMissingDisplay();
        const DisplayApplication<QApplication> application(toolkit);
        QApplication::setQuitOnLastWindowClosed(false);
        FileUserDefaults defaults;
        EditorPreferences preferences(defaults);
        Display display;
        OnDemandScreenshotService screenshots(display.capturer, mode.method, preferences);
        CaptureSessionCoordinator coordinator(display.sessionServices(screenshots, preferences, nullptr));
        CaptureBenchmark benchmark(mode.runs,
                                   {.session = operationsOf(coordinator),
                                    .console = Console::standard(),
                                    .schedule =
                                        [](std::chrono::milliseconds delay, std::function<void()> callback) {
                                            QTimer::singleShot(delay, qApp, std::move(callback));
                                        },
                                    .exit = [](int status) { QCoreApplication::exit(status); }});
        // Failures arrive as reports with an error text.
        coordinator.onError = [](const Error&) {};
        coordinator.onMeasured = [&benchmark](const CaptureTiming::Report& report) {
            benchmark.receive(report);
        };
        QTimer::singleShot(0, &benchmark, &CaptureBenchmark::start);
        return QCoreApplication::exec();
    }

    int operator()(const CommandLineMode::LastCaptureTiming&) {
        return CommandLineRunners::printLastCaptureTiming(CaptureTiming::reportPath(), Console::standard());
    }

    int operator()(const CommandLineMode::ExportIconset& mode) {
        const QCoreApplication application(toolkit.count, toolkit.values.data());
        return CommandLineRunners::exportIconset(mode, Console::standard());
    }

    int operator()(const CommandLineMode::ProfileBuffer& mode) {
        return CommandLineRunners::profileBuffer(mode, Console::standard());
    }

    int operator()(const CommandLineMode::EnableLaunchAtLogin&) {
        const QCoreApplication application(toolkit.count, toolkit.values.data());
        FileUserDefaults defaults;
        AutostartLoginItem item;
        LaunchAtLoginService service(defaults, item);
        return CommandLineRunners::enableLaunchAtLogin(service, Console::standard());
    }

    int operator()(const CommandLineMode::PrintDiagnostics&) {
        if (!isDisplayReachable())
            return reportMissingDisplay();
        const DisplayApplication<QGuiApplication> application(toolkit);
        const X11ScreenList screens;
        const X11ScreenCapturer capturer;
        const X11KeyboardLayout keyboard;
        const std::unique_ptr<PortalScreenAccess> portal = portalInCharge();
        Modules modules;
        const DesktopSystemShortcuts table(desktopNamed(currentDesktopNames()),
                                           {QDBusConnection::sessionBus(), modules.desktopSource()},
                                           keyboard);
        return CommandLineRunners::printDiagnostics(
            {.loginItem = AutostartLoginItem().status(),
             .screenCaptureGranted = capturer.hasPermission() && (!portal || portal->isGranted()),
             .screens = screens.screens(),
             .conflictsWithSystem =
                 [&table](const ScreenshotShortcut& shortcut) {
                     return HotKeyService::conflictsWithSystem(shortcut, table);
                 }},
            Console::standard());
    }

    int operator()(const CommandLineMode::Resident&) {
        if (!isDisplayReachable())
            return reportMissingDisplay();
        const DesktopRunningInstance::Options claim = DesktopRunningInstance::environmentOptions();
        const DisplayApplication<QApplication> application(toolkit);
        QApplication::setQuitOnLastWindowClosed(false);
        DesktopRunningInstance instance(QDBusConnection::sessionBus(), claim);
        if (!instance.claim())
            return 0;
        ResidentProgram program(arguments);
        instance.onActivated = [&program](const QString&) { program.comeForward(); };
        const int status = program.run();
        instance.onActivated = nullptr;
        return status;
    }

private:
    QStringList arguments;
    ToolkitArguments toolkit;
};

} // namespace

int main(int argc, char** argv) {
    SessionBus::neverLaunch();
    QStringList arguments;
    for (int index = 0; index < argc; ++index)
        arguments << QString::fromLocal8Bit(argv[index]);
    return std::visit(ModeRunner(arguments), CommandLineMode::parse(arguments));
}

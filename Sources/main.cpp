#include "App/CaptureBenchmark.h"
#include "App/CommandLineMode.h"
#include "App/CommandLineRunners.h"
#include "App/LaunchAtLoginService.h"
#include "Capture/OnDemandScreenshotService.h"
#include "ProgramParts.h"
#include "ResidentProgram.h"
#include "Updates/UpdateProbe.h"
#include "VistrelPlatform/Freedesktop/AutostartLoginItem.h"
#include "VistrelPlatform/Freedesktop/DesktopRunningInstance.h"
#include "VistrelPlatform/Freedesktop/DesktopSystemShortcuts.h"
#include "VistrelPlatform/Freedesktop/SessionBus.h"
#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/X11/DisplayReachable.h"
#include "VistrelPlatform/X11/X11KeyboardLayout.h"

#include <QApplication>
#include <QTimer>

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
        CaptureDisplay display;
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

    int operator()(const CommandLineMode::Capture&) {
        const auto claim = DesktopRunningInstance::environmentOptions(Activation::Purpose::capture);
        // Before the toolkit, whose start would take longer than the capture.
        const QString asking = QStringLiteral("asking");
        const bool asked = DesktopRunningInstance::askRunning(
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, asking), claim);
        QDBusConnection::disconnectFromBus(asking);
        return asked ? 0 : reside(claim);
    }

    int operator()(const CommandLineMode::Resident&) {
        return reside(DesktopRunningInstance::environmentOptions(Activation::Purpose::comeForward));
    }

private:
    int reside(const DesktopRunningInstance::Options& claim) {
        if (!isDisplayReachable())
            return reportMissingDisplay();
        const DisplayApplication<QApplication> application(toolkit);
        QApplication::setQuitOnLastWindowClosed(false);
        DesktopRunningInstance instance(QDBusConnection::sessionBus(), claim);
        if (!instance.claim())
            return 0;
        ResidentProgram program(arguments);
        instance.onActivated = [&program](const Activation& wanted) { program.activate(wanted); };
        const int status = program.run();
        instance.onActivated = nullptr;
        return status;
    }

    QStringList arguments;
    ToolkitArguments toolkit;
};

} // namespace

int main(int argc, char** argv) {
    SessionBus::neverLaunch();
    QStringList arguments;
    for (int index = 0; index < argc; ++index)
        arguments << QString::fromLocal8Bit(argv[index]);
    // Only for want of memory: the way out gives the screen back.
    try {
        return std::visit(ModeRunner(arguments), CommandLineMode::parse(arguments));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "Vistrel had to stop: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}

#include "Desktop/Fixture/DesktopSession.h"

#include "Desktop/Fixture/Waiting.h"

#include <QDir>
#include <QFileInfo>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <utility>

extern char** environ;

namespace {

/// One line that a child writes into a pipe as soon as it is ready.
class ReadyPipe {
public:
    ReadyPipe() {
        if (pipe2(descriptors, O_CLOEXEC) != 0)
            qFatal("no pipe");
    }
    ~ReadyPipe() {
        close(descriptors[0]);
        closeWriting();
    }
    ReadyPipe(const ReadyPipe&) = delete;
    ReadyPipe& operator=(const ReadyPipe&) = delete;

    int writing() const { return descriptors[1]; }

    QByteArray readLine() {
        closeWriting();
        QByteArray line;
        while (!line.endsWith('\n')) {
            pollfd waiting{descriptors[0], POLLIN, 0};
            const auto limit =
                static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(patience).count());
            char character = 0;
            if (poll(&waiting, 1, limit) <= 0 || read(descriptors[0], &character, 1) != 1)
                return {};
            line.append(character);
        }
        return line.trimmed();
    }

private:
    void closeWriting() {
        if (descriptors[1] >= 0)
            close(std::exchange(descriptors[1], -1));
    }

    int descriptors[2] = {-1, -1};
};

/// What the test was started with, less everything that ties a program to the user's own session.
ChildProgram::Environment inheritedEnvironment() {
    ChildProgram::Environment variables;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        if (const auto sign = text.find('='); sign != std::string::npos)
            variables[text.substr(0, sign)] = text.substr(sign + 1);
    }
    for (const char* name : {"WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_CURRENT_DESKTOP",
                             "DESKTOP_SESSION", "XAUTHORITY", "SESSION_MANAGER", "QT_SCREEN_SCALE_FACTORS",
                             "QT_SCALE_FACTOR", "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE"})
        variables.erase(name);
    return variables;
}

} // namespace

DesktopSession::DesktopSession(const Options& options) : variables(inheritedEnvironment()) {
    if (!directory.isValid())
        qFatal("no temporary folder");
    const std::pair<const char*, const char*> folders[] = {
        {"HOME", "home"},
        {"XDG_DATA_HOME", "data"},
        {"XDG_CONFIG_HOME", "config"},
        {"XDG_CACHE_HOME", "cache"},
        {"XDG_STATE_HOME", "state"},
        {"XDG_RUNTIME_DIR", "runtime"},
    };
    for (const auto& [variable, name] : folders) {
        const QString path = folder(QLatin1String(name));
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        variables[variable] = path.toStdString();
    }
    const std::pair<const char*, const char*> settings[] = {
        {"QT_QPA_PLATFORM", "xcb"},
        {"XDG_SESSION_TYPE", "x11"},
        {"LC_ALL", "C.UTF-8"},
        {"NO_AT_BRIDGE", "1"},
    };
    for (const auto& [variable, value] : settings)
        variables.insert_or_assign(variable, std::string(value));
    if (!options.scaleFactors.isEmpty())
        variables["QT_SCREEN_SCALE_FACTORS"] = options.scaleFactors.toStdString();

    startServer(options);
    if (options.sessionBus)
        startBus();
    if (options.windowManager)
        startWindowManager();
}

DesktopSession::~DesktopSession() = default;

QString DesktopSession::outputStem(const QString& program) {
    return folder(QStringLiteral("%1-%2").arg(++startedPrograms).arg(QFileInfo(program).fileName()));
}

void DesktopSession::startServer(const Options& options) {
    ReadyPipe ready;
    const QString size =
        QStringLiteral("%1x%2x24").arg(options.screenSize.width()).arg(options.screenSize.height());
    const QString program = QStringLiteral("Xvfb");
    server = std::make_unique<ChildProgram>(ChildProgram::Start{
        .program = program,
        .arguments = {QStringLiteral("-displayfd"), QString::number(ready.writing()),
                      QStringLiteral("-screen"), QStringLiteral("0"), size, QStringLiteral("-dpi"),
                      QStringLiteral("96"), QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                      QStringLiteral("-noreset")},
        .environment = variables,
        .outputStem = outputStem(program),
        .inheritedDescriptor = ready.writing(),
    });
    const QByteArray number = ready.readLine();
    if (number.isEmpty())
        qFatal("the X server did not start: %s", server->standardError().constData());
    display = ":" + number;
    variables["DISPLAY"] = display.toStdString();
    observer = std::make_unique<XClient>(display);
    keyboardAndPointer = std::make_unique<XTestInput>(display);
    if (!options.monitors.empty())
        observer->setMonitors(options.monitors);
}

void DesktopSession::startBus() {
    ReadyPipe ready;
    const QString program = QStringLiteral("dbus-daemon");
    bus = std::make_unique<ChildProgram>(ChildProgram::Start{
        .program = program,
        .arguments = {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                      QStringLiteral("--print-address=%1").arg(ready.writing())},
        .environment = variables,
        .outputStem = outputStem(program),
        .inheritedDescriptor = ready.writing(),
    });
    const QByteArray address = ready.readLine();
    if (address.isEmpty())
        qFatal("the session bus did not start: %s", bus->standardError().constData());
    variables["DBUS_SESSION_BUS_ADDRESS"] = address.toStdString();
}

void DesktopSession::startWindowManager() {
    manager = start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
    // It announces itself before it handles events, and may then sleep on one that it has read already:
    // so a window is put up, and the manager nudged, until it has taken care of that window.
    const xcb_window_t probe = observer->createWindow({.rect = {0, 0, 10, 10}, .overrideRedirect = false});
    const auto managed = [&] {
        const auto clients = observer->windowProperty(observer->root(), "_NET_CLIENT_LIST");
        return std::ranges::find(clients, probe) != clients.end();
    };
    bool mapped = false;
    const bool ready = waitUntil([&] {
        if (observer->windowProperty(observer->root(), "_NET_SUPPORTING_WM_CHECK").empty())
            return false;
        if (!std::exchange(mapped, true))
            observer->map(probe);
        observer->touchRoot();
        return managed();
    });
    if (!ready)
        qFatal("the window manager did not start: %s", manager->standardError().constData());
    observer->destroy(probe);
    waitUntil([&] { return !managed(); });
}

std::unique_ptr<ChildProgram> DesktopSession::start(const QString& program, const QStringList& arguments) {
    return std::make_unique<ChildProgram>(ChildProgram::Start{
        .program = program,
        .arguments = arguments,
        .environment = variables,
        .outputStem = outputStem(program),
    });
}

std::optional<QByteArray> DesktopSession::clipboard(const QString& type) {
    const auto reader =
        start(QStringLiteral("xclip"), {QStringLiteral("-selection"), QStringLiteral("clipboard"),
                                        QStringLiteral("-t"), type, QStringLiteral("-o")});
    if (reader->waitForExit(patience) != 0)
        return std::nullopt;
    return reader->standardOutput();
}

void DesktopSession::killServer() {
    server->sendSignal(SIGKILL);
    server->waitForExit(patience);
}

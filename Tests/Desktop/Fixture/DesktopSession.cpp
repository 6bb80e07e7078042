#include "Desktop/Fixture/DesktopSession.h"

#include "Desktop/Fixture/Waiting.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <csignal>
#include <utility>

extern char** environ;

namespace {

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

DesktopSession::DesktopSession(const Options& options)
    : managerCommand(options.managerCommand), variables(inheritedEnvironment()) {
    if (!directory.isValid())
        qFatal("no temporary folder");
    for (const auto& [variable, name] : {std::pair("HOME", "home"),
                                         {"XDG_DATA_HOME", "data"},
                                         {"XDG_CONFIG_HOME", "config"},
                                         {"XDG_CACHE_HOME", "cache"},
                                         {"XDG_STATE_HOME", "state"},
                                         {"XDG_RUNTIME_DIR", "runtime"}}) {
        const QString path = folder(QLatin1String(name));
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        variables[variable] = path.toStdString();
    }
    for (const auto& [variable, value] : {std::pair("QT_QPA_PLATFORM", "xcb"),
                                          {"XDG_SESSION_TYPE", "x11"},
                                          {"LC_ALL", "C.UTF-8"},
                                          {"NO_AT_BRIDGE", "1"}})
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

std::unique_ptr<ChildProgram> DesktopSession::startService(const char* program, const QString& arguments,
                                                           QByteArray& announced) {
    auto service = start(QLatin1String(program), arguments.split(u' '));
    waitUntil([&] { return service->standardOutput().endsWith('\n') || !service->isRunning(); });
    announced = service->standardOutput().trimmed();
    if (announced.isEmpty())
        qFatal("%s did not start: %s", program, service->standardError().constData());
    return service;
}

void DesktopSession::startServer(const Options& options) {
    QByteArray number;
    server = startService("Xvfb",
                          QStringLiteral("-displayfd 1 -screen 0 %1x%2x24 -dpi 96 -nolisten tcp -noreset")
                              .arg(options.screenSize.width())
                              .arg(options.screenSize.height()),
                          number);
    display = ":" + number;
    variables["DISPLAY"] = display.toStdString();
    observer = std::make_unique<XClient>(display);
    keyboardAndPointer = std::make_unique<XTestInput>(display);
    if (!options.monitors.empty())
        observer->setMonitors(options.monitors);
}

void DesktopSession::startBus() {
    QByteArray address;
    bus = startService("dbus-daemon", QStringLiteral("--session --nofork --nopidfile --print-address"),
                       address);
    variables["DBUS_SESSION_BUS_ADDRESS"] = address.toStdString();
}

void DesktopSession::startWindowManager() {
    manager = start(managerCommand.first(), managerCommand.mid(1));
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
    return std::make_unique<ChildProgram>(ChildProgram::Start{.program = program,
                                                              .arguments = arguments,
                                                              .environment = variables,
                                                              .outputStem = outputStem(program)});
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

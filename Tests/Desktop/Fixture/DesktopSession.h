#pragma once

#include "Desktop/Fixture/ChildProgram.h"
#include "Desktop/Fixture/XClient.h"
#include "Desktop/Fixture/XTestInput.h"

#include <QTemporaryDir>

#include <memory>

/// A desktop of its own for one test: a real X server on a number it chose itself, folders in a temporary
/// directory, and if wanted a window manager and a session bus. Everything ends with the object, by id.
class DesktopSession {
public:
    struct Options {
        QSize screenSize{1920, 1080};
        /// Empty: the server's own single monitor, named "screen".
        std::vector<MonitorSetup> monitors = {};
        /// "L=2;R=1", for the programs started here.
        QString scaleFactors = {};
        bool windowManager = false;
        /// Which one; it may want a session bus.
        QStringList managerCommand = {QStringLiteral("openbox"), QStringLiteral("--sm-disable")};
        bool sessionBus = false;
    };

    explicit DesktopSession(const Options& options);
    ~DesktopSession();
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;

    const QByteArray& displayName() const { return display; }
    QString busAddress() const { return QString::fromStdString(variables.at("DBUS_SESSION_BUS_ADDRESS")); }
    /// Where a program started here finds its home, settings and data.
    QString folder(const QString& name = {}) const { return directory.filePath(name); }
    QString dataHome() const { return folder(QStringLiteral("data")); }
    QString configHome() const { return folder(QStringLiteral("config")); }
    QString cacheHome() const { return folder(QStringLiteral("cache")); }
    /// The environment of programs started here.
    const ChildProgram::Environment& environment() const { return variables; }
    void setEnvironment(const std::string& name, const std::string& value) { variables[name] = value; }

    std::unique_ptr<ChildProgram> start(const QString& program, const QStringList& arguments = {});

    /// Returns when it manages windows.
    void startWindowManager();
    void endWindowManager() { manager.reset(); }

    /// What the clipboard holds in that form; absent when nobody offers it.
    std::optional<QByteArray> clipboard(const QString& type);

    XClient& client() { return *observer; }
    XTestInput& input() { return *keyboardAndPointer; }
    QImage screenPixels(QRect rect = {}) { return observer->pixels(rect); }

    /// The server goes away at once, as in a crash.
    void killServer();

private:
    /// Returns when the service has announced itself on its standard output.
    std::unique_ptr<ChildProgram> startService(const char* program, const QString& arguments,
                                               QByteArray& announced);
    void startServer(const Options& options);
    void startBus();
    QString outputStem(const QString& program);

    QTemporaryDir directory;
    QStringList managerCommand;
    ChildProgram::Environment variables;
    QByteArray display;
    int startedPrograms = 0;
    // Destroyed in the opposite order: clients before the server.
    std::unique_ptr<ChildProgram> server;
    std::unique_ptr<ChildProgram> bus;
    std::unique_ptr<ChildProgram> manager;
    std::unique_ptr<XClient> observer;
    std::unique_ptr<XTestInput> keyboardAndPointer;
};

#pragma once

#include "VistrelPlatform/Result.h"

#include <QByteArray>
#include <QIcon>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// One schema of the desktop's settings. Main thread. Values are this process's own view of the store:
/// nobody is asked.
class SettingsSchema {
public:
    using Visitor = std::function<void(const QByteArray& key, const QString& text)>;

    SettingsSchema() = default;
    SettingsSchema(const SettingsSchema&) = delete;
    SettingsSchema& operator=(const SettingsSchema&) = delete;
    virtual ~SettingsSchema() = default;

    virtual QByteArray name() const = 0;
    /// Every text of every key. `path` is for schemas whose objects lie anywhere; empty for the others.
    virtual void eachText(const QByteArray& path, const Visitor& visit) = 0;
};

/// What only the desktop's own library knows: which programs are installed and what its settings say. Main
/// thread. It is slow to load and seldom needed, so it lies in a module of its own.
class DesktopLibrary {
public:
    struct Application {
        /// The name of its desktop entry.
        QString identifier;
        QString name;
        QIcon icon;
        /// Whether it takes files on its command line, or over the bus.
        bool takesFiles = false;
    };
    /// How an application that is still installed is told to open something.
    enum class Activation { command, bus };

    DesktopLibrary() = default;
    DesktopLibrary(const DesktopLibrary&) = delete;
    DesktopLibrary& operator=(const DesktopLibrary&) = delete;
    virtual ~DesktopLibrary() = default;

    /// Every application that opens such files, once each, the preferred one first.
    virtual std::vector<Application> applicationsOpening(const QByteArray& type) = 0;
    /// Whether some program stands ready for addresses of this kind.
    virtual bool opensAddresses(const QByteArray& scheme) = 0;
    /// Nothing for one that is not installed.
    virtual std::optional<Activation> activation(const QString& identifier) = 0;
    /// Runs the application's command with the file; the child's number, 0 when nothing was started. The
    /// caller collects the child.
    virtual qint64 launch(const QString& identifier, const QString& file, const QString& startupID) = 0;

    /// Null when no such schema is installed.
    virtual std::unique_ptr<SettingsSchema> settingsSchema(const QByteArray& name) = 0;
};

/// Where the library comes from: the first call loads it, which may fail.
using DesktopLibrarySource = std::function<Result<DesktopLibrary*>()>;

#pragma once

#include "VistrelPlatform/Update/Updater.h"

#include <QObject>

#include <functional>
#include <memory>

/// Update checks as the application and its settings see them. Main thread. Every assignment of a property
/// emits its signal.
class UpdateService : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool canCheck READ canCheck NOTIFY canCheckChanged)
    Q_PROPERTY(bool automaticallyChecks READ automaticallyChecks WRITE setAutomaticallyChecks NOTIFY
                   automaticallyChecksChanged)
public:
    /// `defaults` is borrowed and outlives the service. Without a driver the service makes its own windows.
    UpdateService(UpdaterConfiguration whatToUpdate, UserDefaults& store,
                  std::unique_ptr<UpdateUserDriver> userDriver = nullptr, QObject* parent = nullptr);
    ~UpdateService() override;

    /// Once, at launch. Without an installation or a key there is no updater and nothing can be checked.
    void start();

    bool canCheck() const { return checkPossible; }
    bool automaticallyChecks() const { return automatic; }
    void setAutomaticallyChecks(bool checks);
    /// The user asks. Nothing happens unless `canCheck`.
    void checkForUpdates();

    /// The host that checks contact; empty when there is none.
    QString updateHost() const;
    /// Null until `start` has made one.
    const Updater* controller() const { return updater.get(); }

    /// Brings the application before the others.
    std::function<void()> onActivate;
    /// While it says no, nothing is checked that nobody asked for.
    std::function<bool()> mayCheckUnasked;
    /// While it says no, no window appears that nobody asked for.
    std::function<bool()> mayInterrupt;
    /// Ends the application, so that the new version can take its place. Ends the event loop by itself when
    /// empty.
    std::function<void()> onQuit;

Q_SIGNALS:
    void canCheckChanged();
    void automaticallyChecksChanged();

private:
    void setCanCheck(bool possible);
    void relaunch(const QString& program);

    const UpdaterConfiguration configuration;
    UserDefaults& defaults;
    std::unique_ptr<UpdateUserDriver> driver;
    std::unique_ptr<Updater> updater;
    bool checkPossible = false;
    bool automatic = false;
};

#pragma once

#include "VistrelPlatform/RunningInstance.h"

#include <QDBusConnection>
#include <QObject>

#include <chrono>
#include <memory>

class InstanceLock;

/// The one process of this user: it holds a lock in the runtime folder and, where there is a session bus,
/// the program's name on it. Main thread.
class DesktopRunningInstance : public RunningInstance {
public:
    struct Options {
        /// How long a holder, and the bus, may take to answer.
        std::chrono::milliseconds patience = std::chrono::seconds(1);
        /// What to ask of a process that runs already.
        Activation wanted;
    };

    /// The token is the environment's, which the toolkit takes away: make this before the application.
    static Options environmentOptions(Activation::Purpose purpose);

    /// Asks a process that is on the bus already, in one call, without waiting for a name or a lock. False
    /// when there is none, or it did not answer in time.
    static bool askRunning(const QDBusConnection& sessionBus, const Options& options);

    /// `sessionBus` may be one that is not connected.
    DesktopRunningInstance(QDBusConnection sessionBus, Options claimOptions);
    ~DesktopRunningInstance() override;

    bool claim() override;

private:
    enum class Name { ours, taken, unavailable };

    Name requestName();

    QDBusConnection bus;
    Options options;
    std::unique_ptr<InstanceLock> lock;
    /// What the bus knows the program by.
    QObject object;
    bool ownsName = false;
};

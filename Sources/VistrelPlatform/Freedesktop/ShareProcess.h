#pragma once

#include "VistrelPlatform/Result.h"

#include <QObject>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>

class QSocketNotifier;

/// Another program that was started for the user and goes on without us. Main thread. Destroying this
/// stops watching it, never the program.
class ShareProcess : public QObject {
public:
    /// Fails when the program cannot be executed, found through the search path if it has no slash.
    static Result<std::unique_ptr<ShareProcess>> start(const QStringList& command);
    /// Watches a child of this process that something else started.
    explicit ShareProcess(qint64 pid);
    ~ShareProcess() override;

    qint64 pid() const { return processID; }
    std::chrono::milliseconds age() const;

    /// Called once with the exit status (128 and the signal's number for a program that was killed).
    std::function<void(int status)> onExit;

private:
    void readStatus();

    qint64 processID;
    int descriptor = -1;
    std::chrono::nanoseconds started;
    QSocketNotifier* notifier = nullptr;
};

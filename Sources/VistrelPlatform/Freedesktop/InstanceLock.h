#pragma once

#include "VistrelPlatform/RunningInstance.h"
#include "VistrelPlatform/System/FileDescriptor.h"

#include <QObject>
#include <QString>

#include <chrono>
#include <functional>

class QSocketNotifier;

/// The place of the one running process of this user: a locked file, which the system frees when its
/// holder dies however it dies, and a socket beside it on which the holder can be asked for something.
/// Main thread. The folder must be one that only this user can enter.
class InstanceLock : public QObject {
    Q_OBJECT
public:
    enum class Outcome { acquired, heldByAnother, unusable };

    explicit InstanceLock(QString folder, QObject* parent = nullptr);
    ~InstanceLock() override;

    Outcome acquire();
    /// False when the holder did not answer in time.
    bool activateHolder(const Activation& wanted, std::chrono::milliseconds patience) const;

    std::function<void(const Activation&)> onActivated;

private:
    QByteArray socketPath() const;
    bool listen();
    void admitVisitor();

    QString folder;
    FileDescriptor lock;
    FileDescriptor server;
    QSocketNotifier* notifier = nullptr;
};

#pragma once

#include <QStringList>

#include <functional>

/// Makes sure that one user session runs one of us. Main thread.
class RunningInstance {
public:
    RunningInstance() = default;
    RunningInstance(const RunningInstance&) = delete;
    RunningInstance& operator=(const RunningInstance&) = delete;
    /// Lets the place go.
    virtual ~RunningInstance() = default;

    /// True when this process is the one from now on. False when another one is; that one has then been
    /// asked to come forward, and this process should end with status 0. Never waits long.
    virtual bool claim() = 0;

    /// Another start, or the desktop, asked this process to come forward. `token` is the desktop's
    /// permission to do so, empty when it gave none.
    std::function<void(const QString& token)> onActivated;
};

#pragma once

#include <QString>

#include <functional>

/// What another start, or the desktop, asks of the running program.
struct Activation {
    enum class Purpose { comeForward, capture };

    Purpose purpose = Purpose::comeForward;
    /// The desktop's permission to come forward, empty when it gave none.
    QString token;

    friend bool operator==(const Activation&, const Activation&) = default;
};

/// Makes sure that one user session runs one of us. Main thread.
class RunningInstance {
public:
    RunningInstance() = default;
    RunningInstance(const RunningInstance&) = delete;
    RunningInstance& operator=(const RunningInstance&) = delete;
    /// Lets the place go.
    virtual ~RunningInstance() = default;

    /// True when this process is the one from now on. False when another one is; that one has then been
    /// asked for what this one was started for, and this process should end with status 0. Never waits long.
    virtual bool claim() = 0;

    std::function<void(const Activation&)> onActivated;
};

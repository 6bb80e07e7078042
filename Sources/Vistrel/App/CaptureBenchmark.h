#pragma once

#include "App/CaptureSession.h"
#include "App/Console.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

/// Repeats the capture of a hot-key press and writes every run's timing: a line per run on standard
/// error, all reports as JSON on standard output. Main thread. The series ends with the first failure.
class CaptureBenchmark : public QObject {
    Q_OBJECT
public:
    /// Longest time that one run may take.
    static constexpr std::chrono::milliseconds runLimit{20000};
    static constexpr std::chrono::milliseconds pauseBetweenRuns{200};
    using Scheduler = std::function<void(std::chrono::milliseconds, std::function<void()>)>;

    struct Services {
        CaptureSession session;
        Console console;
        /// Calls back on the main thread after that time.
        Scheduler schedule;
        /// Ends the process with the status.
        std::function<void(int)> exit;
    };

    CaptureBenchmark(int wanted, Services supplied, QObject* parent = nullptr);

    void start();
    /// A finished report of the run in flight; one that comes too late is ignored.
    void receive(const CaptureTiming::Report& report);

private:
    void runNext();
    void expire(const std::weak_ptr<CaptureTiming>& timing);
    void finish(bool failed);

    const int runs;
    Services services;
    std::vector<CaptureTiming::Report> reports;
    std::shared_ptr<CaptureTiming> activeTiming;
};

#pragma once

#include "Capture/CaptureTiming.h"

#include <QSet>

#include <memory>

/// Decides when one presentation of the overlay is ready: everything drawn, the event loop come round,
/// and the keyboard confirmed on the canvas, within two seconds. Main thread.
class CapturePresentationTiming {
public:
    static constexpr int limitMS = 2000;
    /// Called once, with the error text or nothing.
    using Completion = std::function<void(std::optional<QString>)>;

    struct Focus {
        bool applicationActive = false;
        bool windowKey = false;
        bool canvasFocused = false;
    };

    CapturePresentationTiming(std::shared_ptr<CaptureTiming> timing, Completion completion);

    void eventLoopResumed();
    void observeFocus(const Focus& focus);
    /// The two seconds are over: completes with the error when still pending.
    void expire();
    /// Drops the completion without calling it.
    void abandon();

private:
    void recordOnce(const QString& name);
    void finishIfReady();

    std::shared_ptr<CaptureTiming> timing;
    Completion completion;
    QSet<QString> recorded;
    bool inputReady = false;
    bool drawingReady = false;
};

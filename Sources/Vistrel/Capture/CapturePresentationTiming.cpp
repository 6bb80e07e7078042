#include "Capture/CapturePresentationTiming.h"

#include <utility>

CapturePresentationTiming::CapturePresentationTiming(std::shared_ptr<CaptureTiming> measurement,
                                                     Completion onCompleted)
    : timing(std::move(measurement)), completion(std::move(onCompleted)) {}

void CapturePresentationTiming::eventLoopResumed() {
    if (!completion)
        return;
    drawingReady = true;
    timing->recordPhase(QStringLiteral("overlay_event_loop_resumed"));
    finishIfReady();
}

void CapturePresentationTiming::observeFocus(const Focus& focus) {
    if (!completion)
        return;
    if (focus.applicationActive)
        recordOnce(QStringLiteral("application_active_confirmed"));
    if (focus.windowKey)
        recordOnce(QStringLiteral("overlay_key_confirmed"));
    if (focus.canvasFocused)
        recordOnce(QStringLiteral("canvas_focus_confirmed"));
    // Focus that is lost again withdraws readiness; what was confirmed once stays recorded.
    inputReady = focus.applicationActive && focus.windowKey && focus.canvasFocused;
    if (inputReady)
        recordOnce(QStringLiteral("selection_input_ready"));
    finishIfReady();
}

void CapturePresentationTiming::expire() {
    if (!completion)
        return;
    // The completion may destroy this object.
    const Completion pending = std::exchange(completion, nullptr);
    pending(QStringLiteral("Capture drawing and keyboard focus were not both confirmed within two seconds "
                           "of overlay presentation."));
}

void CapturePresentationTiming::abandon() {
    completion = nullptr;
}

void CapturePresentationTiming::recordOnce(const QString& name) {
    if (recorded.contains(name))
        return;
    recorded.insert(name);
    timing->recordPhase(name);
}

void CapturePresentationTiming::finishIfReady() {
    if (!inputReady || !drawingReady || !completion)
        return;
    const Completion pending = std::exchange(completion, nullptr);
    pending(std::nullopt);
}

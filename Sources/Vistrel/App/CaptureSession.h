#pragma once

#include "Capture/CaptureTiming.h"

#include <functional>
#include <memory>

/// What the program asks of a capture session; filled in with a coordinator's operations. Main thread.
struct CaptureSession {
    std::function<void(CaptureTime::Instant, std::shared_ptr<CaptureTiming>)> begin;
    std::function<void()> close;
    std::function<void()> prepareOverlays;
    std::function<void()> beginPreview;
    std::function<bool()> busy;
};

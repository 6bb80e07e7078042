#pragma once

#include "Capture/CaptureTiming.h"
#include "Capture/FrozenDisplay.h"
#include "VistrelPlatform/Result.h"

#include <QFuture>

#include <memory>
#include <stop_token>
#include <vector>

/// Takes one still picture of every display on request. Main thread; the futures finish on it.
class ScreenshotCapturing {
public:
    ScreenshotCapturing() = default;
    ScreenshotCapturing(const ScreenshotCapturing&) = delete;
    ScreenshotCapturing& operator=(const ScreenshotCapturing&) = delete;
    virtual ~ScreenshotCapturing() = default;

    /// Makes sure that the next capture of these screens has nothing to prepare.
    virtual QFuture<Result<void>> prepare(std::vector<Screen> screens) = 0;
    /// One picture per screen that could be captured, in the order of `screens`.
    virtual QFuture<Result<std::vector<FrozenDisplay>>>
    capture(std::vector<Screen> screens, std::shared_ptr<CaptureTiming> timing, std::stop_token stop) = 0;
    virtual void invalidatePreparation() = 0;
};

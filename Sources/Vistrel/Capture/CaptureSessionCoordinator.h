#pragma once

#include "Capture/CapturePresentationTiming.h"
#include "Capture/CaptureTiming.h"
#include "Capture/ScreenshotCapturing.h"
#include "Diagnostics/LocalDiagnostics.h"
#include "Settings/EditorPreferences.h"
#include "VistrelPlatform/OverlayWindows.h"
#include "VistrelPlatform/Screen.h"

#include <QObject>

#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

class CaptureOverlayWindow;
class CaptureOverlayView;

/// Runs one capture from request to close: pictures, overlay windows, focus, copy, save, share, timing
/// and the journal. Main thread. Owns the overlay windows, one per display, kept between captures.
class CaptureSessionCoordinator : public QObject {
    Q_OBJECT
public:
    /// Everything borrowed outlives the coordinator; an empty callback takes its default.
    struct Services {
        ScreenshotCapturing& screenshots;
        ScreenList& screens;
        OverlayWindows& overlayWindows;
        EditorPreferences& preferences;
        LocalDiagnostics* diagnostics = nullptr;
        std::function<bool()> hasPermission;
        std::function<void()> resetCursor;
        std::function<void(const CaptureTiming::Report&)> saveMeasurement;
    };

    explicit CaptureSessionCoordinator(Services services, QObject* parent = nullptr);
    ~CaptureSessionCoordinator() override;

    /// Requests a capture. Dropped while one is open.
    void begin(CaptureTime::Instant at, std::shared_ptr<CaptureTiming> timing);
    /// Shows the overlay on generated pictures; nothing is captured or timed.
    void beginPreview();
    /// One overlay window per current screen, and the service warmed.
    void prepareOverlays();
    /// Ends the presentation; windows are kept.
    void close();
    bool busy() const { return isBusy; }

    std::function<void()> onNeedsPermission;
    /// When set, pictures go here instead of being shown.
    std::function<void(std::vector<FrozenDisplay>)> onPresent;
    /// When set, capture errors go here instead of an alert.
    std::function<void(const Error&)> onError;
    std::function<void(const CaptureTiming::Report&)> onMeasured;

private:
    bool isBusy = false;
    Services services;
};

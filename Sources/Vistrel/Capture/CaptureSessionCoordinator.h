#pragma once

#include "Capture/CaptureTiming.h"
#include "Capture/OverlayPresenter.h"
#include "Capture/ScreenshotCapturing.h"
#include "Diagnostics/LocalDiagnostics.h"
#include "Settings/EditorPreferences.h"
#include "VistrelPlatform/ImageClipboard.h"
#include "VistrelPlatform/OverlayWindows.h"
#include "VistrelPlatform/Screen.h"
#include "VistrelPlatform/ShareServices.h"

#include <QObject>

#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

class CaptureOutput;
class CaptureShare;
class QMessageBox;

/// Runs one capture from request to close: permission, pictures, presentation, output, timing and the
/// journal. One capture at a time. Main thread.
class CaptureSessionCoordinator : public QObject {
    Q_OBJECT
public:
    /// Everything borrowed outlives the coordinator; an empty callback takes its default.
    struct Services {
        ScreenshotCapturing& screenshots;
        ScreenList& screens;
        OverlayWindows& overlayWindows;
        EditorPreferences& preferences;
        ImageClipboard& clipboard;
        LocalDiagnostics* diagnostics = nullptr;
        /// Absent where nothing can be shared; the Share button then does nothing.
        ShareServices* share = nullptr;
        std::function<bool()> hasPermission;
        std::function<void()> resetCursor;
        std::function<void(const CaptureTiming::Report&)> saveMeasurement;
    };

    explicit CaptureSessionCoordinator(Services services, QObject* parent = nullptr);
    ~CaptureSessionCoordinator() override;

    /// Requests a capture; `timing` is absent for requests without a shortcut. Dropped while one is open.
    void begin(CaptureTime::Instant at, std::shared_ptr<CaptureTiming> timing);
    /// Shows the overlay on generated pictures; nothing is captured or timed.
    void beginPreview();
    /// One overlay window per current screen, and the service warmed. Nothing while a capture is open.
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
    using Timing = std::shared_ptr<CaptureTiming>;
    using Frozen = std::vector<FrozenDisplay>;

    void wirePresenter();
    void record(Diagnostic::Action action, const Diagnostic::Details& details = {});
    void journalPhases(CaptureTiming& timing);
    void startCapture(const Timing& timing);
    void captured(const Result<Frozen>& result, const Timing& timing);
    void failed(const Error& error, const Timing& timing);
    void present(const Frozen& displays, const Timing& timing);
    void completeMeasurement(const Timing& timing, const std::optional<QString>& error);
    void displaysChanged();
    void showAlert(const QString& description);

    Services services;
    OverlayPresenter presenter;
    std::unique_ptr<CaptureOutput> output;
    std::unique_ptr<CaptureShare> share;
    std::stop_source captureTask;
    /// What the last capture failed of, until it is read or the next is asked for.
    std::unique_ptr<QMessageBox> alert;
    bool isBusy = false;
};

#pragma once

#include "Capture/CapturePresentationTiming.h"
#include "Capture/CaptureTiming.h"
#include "Capture/FrozenDisplay.h"
#include "Diagnostics/DiagnosticRecord.h"
#include "Settings/EditorPreferences.h"
#include "VistrelPlatform/OverlayWindows.h"

#include <QFutureSynchronizer>
#include <QObject>

#include <functional>
#include <memory>
#include <set>
#include <vector>

class CaptureOverlayView;
class CaptureOverlayWindow;

/// Owns the overlay windows, one per display, and shows frozen displays in them: pictures, stacking,
/// keyboard focus and the confirmation that a presentation is ready. Main thread.
class OverlayPresenter : public QObject {
    Q_OBJECT
public:
    struct Services {
        ScreenList& screens;
        OverlayWindows& overlayWindows;
        EditorPreferences& preferences;
    };

    explicit OverlayPresenter(Services services);
    ~OverlayPresenter() override;

    /// Whether there is exactly one window per screen, in their order and places.
    bool matches(const std::vector<Screen>& screens) const;
    /// One hidden window per screen in place of all there were.
    void rebuild(const std::vector<Screen>& screens);
    void destroyWindows();

    /// Shows every display that has a window. With a timing, `onReady` is called once with the outcome.
    void show(const std::vector<FrozenDisplay>& displays, const std::shared_ptr<CaptureTiming>& timing);
    /// Hides every window and forgets the pictures; a pending outcome is dropped.
    void hide();

    void setLevel(OverlayLevel level);
    /// A share owns the interaction: the windows make room for its menu and leave activation alone.
    void suspend();
    /// Takes the windows away for another program's window; their contents stay.
    void orderOut();
    /// The share has ended: all windows are back, and `window` has the keyboard.
    void resume(CaptureOverlayWindow& window);
    /// A dialog of ours stands in front of `window` from now on, and of no other; or no longer.
    void beginDialog(CaptureOverlayWindow& window);
    void endDialog(CaptureOverlayWindow& window);
    /// Makes one of our dialogs appear above the lowered windows and take the keyboard.
    void prepareDialog(QWidget& dialog);

    std::function<void(Diagnostic::Action, const Diagnostic::Details&)> onDiagnosticEvent;
    std::function<void(std::optional<QString> error)> onReady;
    std::function<void()> onClose;
    std::function<void(const QImage&)> onCopy;
    std::function<void(const QImage&, CaptureOverlayWindow&)> onSave;
    std::function<void(const QImage&, QWidget& anchor, CaptureOverlayWindow&)> onShare;

private:
    using Timing = std::shared_ptr<CaptureTiming>;
    using Shown = std::vector<CaptureOverlayWindow*>;

    void prepareText();
    void track(const Timing& timing);
    void prepareWindow(CaptureOverlayWindow& window, const FrozenDisplay& display, int index);
    void timeFirstDraw(CaptureOverlayView& view, std::uint32_t displayID, const Timing& timing);
    void firstDrawn(std::uint32_t displayID);
    void bringToFront(const Timing& timing);
    void submitDraws(const Timing& timing);
    void observeActivation();
    void observeInputFocus();
    void applicationBecameActive();
    void selectionStarted(CaptureOverlayWindow& window);
    CaptureOverlayWindow* windowFor(const Screen& screen) const;
    CaptureOverlayWindow* keyCandidate(const Shown& candidates) const;
    Shown visibleWindows() const;

    Services services;
    std::vector<std::unique_ptr<CaptureOverlayWindow>> windows;
    Shown shown;
    std::set<std::uint32_t> pendingDraws;
    std::shared_ptr<CapturePresentationTiming> presentationTiming;
    /// Ends the subscriptions of one presentation with it.
    std::unique_ptr<QObject> focusObservers;
    bool suspended = false;
    /// Waited for at the end: fonts cannot be read without the application.
    QFutureSynchronizer<bool> loadingFonts;
};

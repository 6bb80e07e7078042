#include "Capture/OverlayPresenter.h"

#include "Capture/DialogKeys.h"
#include "Overlay/BadgeText.h"
#include "Overlay/CaptureOverlayView.h"
#include "Overlay/CaptureOverlayWindow.h"
#include "VistrelPlatform/System/WhenFinished.h"

#include <QApplication>
#include <QTimer>
#include <QWindow>
#include <QtConcurrentRun>

namespace {
void record(const std::shared_ptr<CaptureTiming>& timing, const QString& phase,
            const CaptureTiming::PhaseOptions& options = {}) {
    if (timing)
        timing->recordPhase(phase, options);
}
} // namespace

OverlayPresenter::OverlayPresenter(Services presenterServices) : services(presenterServices) {}

OverlayPresenter::~OverlayPresenter() {
    services.overlayWindows.onKeyboardFocus = {};
}

bool OverlayPresenter::matches(const std::vector<Screen>& screens) const {
    return std::ranges::equal(windows, screens, [](const auto& window, const Screen& screen) {
        return window->screen() == screen;
    });
}

void OverlayPresenter::rebuild(const std::vector<Screen>& screens) {
    destroyWindows();
    for (const Screen& screen : screens) {
        auto window = std::make_unique<CaptureOverlayWindow>(screen, services.preferences,
                                                             services.overlayWindows.windowFlags());
        services.overlayWindows.prepare(*window, screen);
        windows.push_back(std::move(window));
    }
    prepareText();
}

void OverlayPresenter::prepareText() {
    // The list of fonts is read beside the event loop, so that neither the start nor a capture waits for it.
    const auto loading = QtConcurrent::run([] {
        BadgeText::loadSystemFonts();
        return true;
    });
    loadingFonts.addFuture(loading);
    whenFinished(loading, this, [this](bool) {
        for (const auto& window : windows)
            window->view().prepareText();
    });
}

void OverlayPresenter::destroyWindows() {
    shown.clear();
    windows.clear();
}

void OverlayPresenter::show(const std::vector<FrozenDisplay>& displays, const Timing& timing) {
    if (timing)
        track(timing);
    observeActivation();
    shown.clear();
    pendingDraws.clear();
    for (const FrozenDisplay& display : displays)
        pendingDraws.insert(display.displayID);
    const CaptureTime::Instant loopStart = CaptureTime::now();
    for (std::size_t index = 0; index < displays.size(); ++index) {
        const FrozenDisplay& display = displays[index];
        const CaptureTime::Instant since = CaptureTime::now();
        CaptureOverlayWindow* window = windowFor(display.screen);
        if (!window)
            continue;
        prepareWindow(*window, display, static_cast<int>(index));
        if (timing)
            timeFirstDraw(window->view(), display.displayID, timing);
        shown.push_back(window);
        record(timing, QStringLiteral("overlay_window_prepared"),
               {.displayID = display.displayID, .since = since});
    }
    record(timing, QStringLiteral("all_overlay_windows_prepared"), {.since = loopStart});
    bringToFront(timing);
    submitDraws(timing);
}

void OverlayPresenter::track(const Timing& timing) {
    presentationTiming = std::make_shared<CapturePresentationTiming>(timing, [this](const auto& error) {
        presentationTiming.reset();
        if (onReady)
            onReady(error);
    });
    QTimer::singleShot(CapturePresentationTiming::limitMS, this,
                       [tracker = std::weak_ptr(presentationTiming)] {
                           if (const auto pending = tracker.lock())
                               pending->expire();
                       });
}

void OverlayPresenter::prepareWindow(CaptureOverlayWindow& window, const FrozenDisplay& display, int index) {
    CaptureOverlayView& view = window.view();
    view.resetSession(display.captured, display.screen.scale, display.screen.pointSize());
    services.overlayWindows.setFrozenPicture(window, display.captured.frozen);
    services.overlayWindows.setLevel(window, OverlayLevel::aboveEverything);
    view.onDiagnosticEvent = [this, index](Diagnostic::Action action, Diagnostic::Details details) {
        details.displayIndex = index;
        if (onDiagnosticEvent)
            onDiagnosticEvent(action, details);
    };
    view.onClose = [this] { onClose(); };
    view.onSelection = [this, &window] { selectionStarted(window); };
    view.onCopy = [this](const QImage& image) { onCopy(image); };
    view.onSave = [this, &window](const QImage& image) { onSave(image, window); };
    view.onShare = [this, &window](const QImage& image, QWidget* anchor) {
        if (onShare)
            onShare(image, *anchor, window);
    };
}

void OverlayPresenter::timeFirstDraw(CaptureOverlayView& view, std::uint32_t displayID,
                                     const Timing& timing) {
    auto started = std::make_shared<std::optional<CaptureTime::Instant>>();
    view.onFirstDrawStarted = [timing, displayID, started] {
        *started = CaptureTime::now();
        timing->recordPhase(QStringLiteral("overlay_draw_started"), {.displayID = displayID});
    };
    view.onFirstDraw = [this, timing, displayID, started] {
        timing->recordPhase(QStringLiteral("overlay_first_draw"),
                            {.displayID = displayID, .since = *started});
        firstDrawn(displayID);
    };
}

void OverlayPresenter::firstDrawn(std::uint32_t displayID) {
    if (pendingDraws.erase(displayID) == 0 || !pendingDraws.empty())
        return;
    const auto resume = [this, tracker = std::weak_ptr(presentationTiming)] {
        const auto pending = tracker.lock();
        if (!pending)
            return;
        observeInputFocus();
        pending->eventLoopResumed();
    };
    QMetaObject::invokeMethod(this, resume, Qt::QueuedConnection);
}

void OverlayPresenter::bringToFront(const Timing& timing) {
    // All windows are mapped before anything is painted: the window system shows their frozen pictures.
    const CaptureTime::Instant since = CaptureTime::now();
    services.overlayWindows.show({shown.begin(), shown.end()});
    CaptureOverlayWindow* key = keyCandidate(shown);
    if (key)
        services.overlayWindows.takeFocus(*key);
    record(timing, QStringLiteral("application_activation_requested"), {.since = since});
    for (CaptureOverlayWindow* window : shown) {
        window->view().setFocus();
        window->view().setCursor(Qt::CrossCursor);
    }
    record(timing, QStringLiteral("selection_input_configured"));
    observeInputFocus();
}

void OverlayPresenter::submitDraws(const Timing& timing) {
    // A callback of the first draw may end the presentation; the list then changes under the loop.
    for (CaptureOverlayWindow* window : Shown(shown)) {
        window->view().repaint();
        record(timing, QStringLiteral("overlay_display_submitted"),
               {.displayID = window->screen().displayID});
    }
    record(timing, QStringLiteral("all_overlay_displays_submitted"));
}

void OverlayPresenter::hide() {
    focusObservers.reset();
    services.overlayWindows.onKeyboardFocus = {};
    if (presentationTiming)
        presentationTiming->abandon();
    presentationTiming.reset();
    shown.clear();
    pendingDraws.clear();
    suspended = false;
    for (const auto& window : windows) {
        window->dialogAttached = false;
        services.overlayWindows.hide(*window);
        window->view().resetSession({}, 1.0, window->screen().pointSize());
        services.overlayWindows.setFrozenPicture(*window, nullptr);
        window->releasePixels();
    }
}

void OverlayPresenter::setLevel(OverlayLevel level) {
    for (const auto& window : windows)
        services.overlayWindows.setLevel(*window, level);
}

void OverlayPresenter::suspend() {
    suspended = true;
    setLevel(OverlayLevel::belowDialogs);
    for (const auto& window : windows)
        window->dialogAttached = false;
}

void OverlayPresenter::orderOut() {
    for (CaptureOverlayWindow* window : shown)
        services.overlayWindows.hide(*window);
}

void OverlayPresenter::resume(CaptureOverlayWindow& window) {
    suspended = false;
    if (std::ranges::find(shown, &window) == shown.end())
        return;
    services.overlayWindows.show({shown.begin(), shown.end()});
    setLevel(OverlayLevel::aboveEverything);
    services.overlayWindows.takeFocus(window);
    window.view().setFocus();
    window.view().pointerFound(services.screens.pointerPosition() - window.screen().nativeRect.topLeft());
}

void OverlayPresenter::beginDialog(CaptureOverlayWindow& window) {
    setLevel(OverlayLevel::belowDialogs);
    for (const auto& each : windows)
        each->dialogAttached = each.get() == &window;
}

void OverlayPresenter::prepareDialog(QWidget& dialog) {
    DialogKeys::ignoreHeld(dialog);
    services.overlayWindows.prepareDialog(dialog);
}

void OverlayPresenter::endDialog(CaptureOverlayWindow& window) {
    window.dialogAttached = false;
    setLevel(OverlayLevel::aboveEverything);
    if (std::ranges::find(shown, &window) == shown.end())
        return;
    services.overlayWindows.takeFocus(window);
    window.view().setFocus();
}

void OverlayPresenter::observeInputFocus() {
    if (!presentationTiming)
        return;
    const auto key = std::ranges::find_if(
        shown, [this](const auto* window) { return services.overlayWindows.hasKeyboardFocus(*window); });
    const bool windowKey = key != shown.end();
    presentationTiming->observeFocus(
        {.applicationActive = QGuiApplication::applicationState() == Qt::ApplicationActive,
         .windowKey = windowKey,
         .canvasFocused =
             windowKey && (*key)->view().hasImage() && QApplication::focusWidget() == &(*key)->view()});
}

void OverlayPresenter::observeActivation() {
    focusObservers = std::make_unique<QObject>();
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, focusObservers.get(),
            [this](Qt::ApplicationState state) {
                if (state == Qt::ApplicationActive && !suspended)
                    applicationBecameActive();
            });
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, focusObservers.get(),
            [this](const QWindow* window) {
                if (window && !suspended)
                    observeInputFocus();
            });
    services.overlayWindows.onKeyboardFocus = [this] {
        if (!suspended && !shown.empty())
            applicationBecameActive();
    };
}

void OverlayPresenter::applicationBecameActive() {
    const Shown candidates = visibleWindows();
    const auto alreadyKey = std::ranges::find_if(
        candidates, [this](const auto* window) { return services.overlayWindows.hasKeyboardFocus(*window); });
    CaptureOverlayWindow* target = alreadyKey != candidates.end() ? *alreadyKey : keyCandidate(candidates);
    const bool dialogInFront =
        std::ranges::any_of(candidates, [](const auto* window) { return window->dialogAttached; });
    if (target && !dialogInFront) {
        // The window system's word is not the toolkit's: both must hold it for the focused one.
        if (alreadyKey == candidates.end() || QApplication::activeWindow() != target)
            services.overlayWindows.takeFocus(*target);
        if (!target->view().isAncestorOf(QApplication::focusWidget()))
            target->view().setFocus();
    }
    observeInputFocus();
}

void OverlayPresenter::selectionStarted(CaptureOverlayWindow& window) {
    for (const auto& other : windows) {
        CaptureOverlayView& view = other->view();
        if (other.get() == &window || view.selection().width <= 0)
            continue;
        view.onDiagnosticEvent(
            Diagnostic::Action::selectionCleared,
            {.tool = static_cast<int>(view.tool()), .size = view.drawingSize(), .layers = view.layerCount()});
        view.clearForOtherDisplay();
    }
    if (!services.overlayWindows.hasKeyboardFocus(window))
        services.overlayWindows.takeFocus(window);
}

CaptureOverlayWindow* OverlayPresenter::windowFor(const Screen& screen) const {
    const auto found = std::ranges::find_if(
        windows, [&](const auto& window) { return window->screen().nativeRect == screen.nativeRect; });
    return found != windows.end() ? found->get() : nullptr;
}

CaptureOverlayWindow* OverlayPresenter::keyCandidate(const Shown& candidates) const {
    const QPoint pointer = services.screens.pointerPosition();
    const auto under = std::ranges::find_if(
        candidates, [&](const auto* window) { return window->screen().nativeRect.contains(pointer); });
    if (under != candidates.end())
        return *under;
    return candidates.empty() ? nullptr : candidates.front();
}

OverlayPresenter::Shown OverlayPresenter::visibleWindows() const {
    Shown visible;
    std::ranges::copy_if(shown, std::back_inserter(visible),
                         [](const auto* window) { return window->isVisible() && window->view().hasImage(); });
    return visible;
}

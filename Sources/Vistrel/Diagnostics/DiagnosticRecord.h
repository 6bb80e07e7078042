#pragma once

#include <QString>

#include <optional>

/// What is written to the private journal: an action and numbers, never pictures, text or paths.
namespace Diagnostic {

/// The journal writes each case by its name.
enum class Action {
    launch,
    previousLaunchUnfinished,
    quit,
    displaysChanged,
    captureRequested,
    captureBusy,
    permissionMissing,
    captureReady,
    captureFailed,
    captureError,
    capturePhase,
    captureClosed,
    selectionCreated,
    selectionMoved,
    selectionResized,
    selectionCleared,
    toolSelected,
    layerSelected,
    layerCreated,
    layerEdited,
    layerMoved,
    layerResized,
    layerDeleted,
    layerReordered,
    textEditingStarted,
    textCommitted,
    textCancelled,
    sizeChanged,
    colorChanged,
    undo,
    redo,
    copyRequested,
    copySucceeded,
    copyFailed,
    saveRequested,
    saveSucceeded,
    saveCancelled,
    saveFailed,
    shareRequested,
    shareSucceeded,
    shareCancelled,
    shortcutChanged,
    shortcutFailed,
    permissionRequested,
};

enum class Phase {
    hotkey_handler_entered,
    shortcut_validation,
    permission_check,
    capture_task_started,
    capture_method_direct_rect,
    capture_method_filtered_parallel,
    capture_metadata_cached,
    capture_metadata_preparation,
    display_image_available,
    all_images_available,
    overlay_draw_started,
    overlay_first_draw,
    overlay_window_prepared,
    all_overlay_windows_prepared,
    application_activation_requested,
    selection_input_configured,
    overlay_display_submitted,
    all_overlay_displays_submitted,
    application_active_confirmed,
    overlay_key_confirmed,
    canvas_focus_confirmed,
    selection_input_ready,
    overlay_event_loop_resumed,
};

enum class Source { hotkey, menuBar, preview, other };

enum class ErrorKind { capture, encoding, cocoa, screenCaptureKit, hotkey, other };

/// All optional; what is absent is left out of the journal line.
struct Details {
    std::optional<int> tool = std::nullopt;
    std::optional<int> size = std::nullopt;
    std::optional<int> layers = std::nullopt;
    std::optional<int> width = std::nullopt;
    std::optional<int> height = std::nullopt;
    std::optional<int> displays = std::nullopt;
    std::optional<int> displayIndex = std::nullopt;
    std::optional<double> durationMS = std::nullopt;
    std::optional<double> offsetMS = std::nullopt;
    std::optional<Phase> phase = std::nullopt;
    std::optional<Source> source = std::nullopt;
    std::optional<ErrorKind> errorKind = std::nullopt;
    std::optional<int> errorCode = std::nullopt;

    friend bool operator==(const Details&, const Details&) = default;
};

/// Case names as they are written; the reverse finds nothing for an unknown name.
QString name(Action action);
QString name(Phase phase);
QString name(Source source);
QString name(ErrorKind kind);
std::optional<Action> actionNamed(const QString& name);
std::optional<Phase> phaseNamed(const QString& name);
std::optional<Source> sourceNamed(const QString& name);
std::optional<ErrorKind> errorKindNamed(const QString& name);

} // namespace Diagnostic

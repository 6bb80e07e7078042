#include "Diagnostics/DiagnosticRecord.h"

#include <array>
#include <cstddef>

namespace {

// In the order of the cases.
constexpr auto actionNames = std::to_array<QLatin1StringView>({
    QLatin1StringView("launch"),
    QLatin1StringView("previousLaunchUnfinished"),
    QLatin1StringView("quit"),
    QLatin1StringView("displaysChanged"),
    QLatin1StringView("captureRequested"),
    QLatin1StringView("captureBusy"),
    QLatin1StringView("permissionMissing"),
    QLatin1StringView("captureReady"),
    QLatin1StringView("captureFailed"),
    QLatin1StringView("captureError"),
    QLatin1StringView("capturePhase"),
    QLatin1StringView("captureClosed"),
    QLatin1StringView("selectionCreated"),
    QLatin1StringView("selectionMoved"),
    QLatin1StringView("selectionResized"),
    QLatin1StringView("selectionCleared"),
    QLatin1StringView("toolSelected"),
    QLatin1StringView("layerSelected"),
    QLatin1StringView("layerCreated"),
    QLatin1StringView("layerEdited"),
    QLatin1StringView("layerMoved"),
    QLatin1StringView("layerResized"),
    QLatin1StringView("layerDeleted"),
    QLatin1StringView("layerReordered"),
    QLatin1StringView("textEditingStarted"),
    QLatin1StringView("textCommitted"),
    QLatin1StringView("textCancelled"),
    QLatin1StringView("sizeChanged"),
    QLatin1StringView("colorChanged"),
    QLatin1StringView("undo"),
    QLatin1StringView("redo"),
    QLatin1StringView("copyRequested"),
    QLatin1StringView("copySucceeded"),
    QLatin1StringView("copyFailed"),
    QLatin1StringView("saveRequested"),
    QLatin1StringView("saveSucceeded"),
    QLatin1StringView("saveCancelled"),
    QLatin1StringView("saveFailed"),
    QLatin1StringView("shareRequested"),
    QLatin1StringView("shareSucceeded"),
    QLatin1StringView("shareCancelled"),
    QLatin1StringView("shortcutChanged"),
    QLatin1StringView("shortcutFailed"),
    QLatin1StringView("permissionRequested"),
});
static_assert(actionNames.size() == static_cast<std::size_t>(Diagnostic::Action::permissionRequested) + 1);

constexpr auto phaseNames = std::to_array<QLatin1StringView>({
    QLatin1StringView("hotkey_handler_entered"),
    QLatin1StringView("shortcut_validation"),
    QLatin1StringView("permission_check"),
    QLatin1StringView("capture_task_started"),
    QLatin1StringView("capture_method_direct_rect"),
    QLatin1StringView("capture_method_filtered_parallel"),
    QLatin1StringView("capture_metadata_cached"),
    QLatin1StringView("capture_metadata_preparation"),
    QLatin1StringView("display_image_available"),
    QLatin1StringView("all_images_available"),
    QLatin1StringView("overlay_draw_started"),
    QLatin1StringView("overlay_first_draw"),
    QLatin1StringView("overlay_window_prepared"),
    QLatin1StringView("all_overlay_windows_prepared"),
    QLatin1StringView("application_activation_requested"),
    QLatin1StringView("selection_input_configured"),
    QLatin1StringView("overlay_display_submitted"),
    QLatin1StringView("all_overlay_displays_submitted"),
    QLatin1StringView("application_active_confirmed"),
    QLatin1StringView("overlay_key_confirmed"),
    QLatin1StringView("canvas_focus_confirmed"),
    QLatin1StringView("selection_input_ready"),
    QLatin1StringView("overlay_event_loop_resumed"),
});
static_assert(phaseNames.size() ==
              static_cast<std::size_t>(Diagnostic::Phase::overlay_event_loop_resumed) + 1);

constexpr auto sourceNames = std::to_array<QLatin1StringView>({
    QLatin1StringView("hotkey"),
    QLatin1StringView("menuBar"),
    QLatin1StringView("preview"),
    QLatin1StringView("other"),
});
static_assert(sourceNames.size() == static_cast<std::size_t>(Diagnostic::Source::other) + 1);

constexpr auto errorKindNames = std::to_array<QLatin1StringView>({
    QLatin1StringView("capture"),
    QLatin1StringView("encoding"),
    QLatin1StringView("cocoa"),
    QLatin1StringView("screenCaptureKit"),
    QLatin1StringView("hotkey"),
    QLatin1StringView("other"),
});
static_assert(errorKindNames.size() == static_cast<std::size_t>(Diagnostic::ErrorKind::other) + 1);

template<class Case, std::size_t Count>
QString nameIn(const std::array<QLatin1StringView, Count>& names, Case value) {
    return names[static_cast<std::size_t>(value)];
}

template<class Case, std::size_t Count>
std::optional<Case> caseIn(const std::array<QLatin1StringView, Count>& names, const QString& name) {
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        return std::nullopt;
    return static_cast<Case>(found - names.begin());
}

} // namespace

QString Diagnostic::name(Action action) {
    return nameIn(actionNames, action);
}

QString Diagnostic::name(Phase phase) {
    return nameIn(phaseNames, phase);
}

QString Diagnostic::name(Source source) {
    return nameIn(sourceNames, source);
}

QString Diagnostic::name(ErrorKind kind) {
    return nameIn(errorKindNames, kind);
}

std::optional<Diagnostic::Action> Diagnostic::actionNamed(const QString& name) {
    return caseIn<Action>(actionNames, name);
}

std::optional<Diagnostic::Phase> Diagnostic::phaseNamed(const QString& name) {
    return caseIn<Phase>(phaseNames, name);
}

std::optional<Diagnostic::Source> Diagnostic::sourceNamed(const QString& name) {
    return caseIn<Source>(sourceNames, name);
}

std::optional<Diagnostic::ErrorKind> Diagnostic::errorKindNamed(const QString& name) {
    return caseIn<ErrorKind>(errorKindNames, name);
}

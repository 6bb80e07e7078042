#pragma once

#include "Annotations/AnnotationRenderer.h"
#include "Diagnostics/DiagnosticRecord.h"
#include "Overlay/OverlayDamage.h"
#include "Overlay/OverlayDocument.h"
#include "Overlay/TextEditing.h"

#include <functional>
#include <memory>

/// What the editing rules ask of the canvas around them. Every member is set.
struct OverlayHooks {
    std::function<void(Diagnostic::Action, const Diagnostic::Details&)> onDiagnosticEvent;
    /// May end the session at once: nothing is touched after the call.
    std::function<void()> onClose;
    std::function<void()> onSelection;
    std::function<void(const QImage&)> onCopy;
    std::function<void(const QImage&)> onSave;
    /// The session changed: panels, controls and picture follow.
    std::function<void()> onChange;
    /// Gives the canvas the keyboard.
    std::function<void()> focusCanvas;
    std::function<void()> closeColorPicker;
    std::function<bool()> doubleClickOutsideToCancel;
    std::function<std::unique_ptr<TextEditing>(const TextEditorSetup&)> openTextEditor;
};

/// The document being edited with its renderer, and what every rule does to them: replacing layers,
/// moving the selection, reporting. Keeps the damage true. Main thread.
class OverlaySession {
public:
    OverlayDocument document;
    AnnotationRenderer renderer;
    OverlayDamage damage;
    OverlayHooks hooks;

    /// Reports with the current drawing size and number of layers, and the current tool when none is given.
    void report(Diagnostic::Action action, std::optional<AnnotationTool> style = {},
                std::optional<int> size = {});

    /// Replaces the layer that has the same id.
    void replaceLayer(const EditorAnnotation& layer);
    /// Something looks different in `area` of the layer at `index`; effects above it follow.
    void layerChanged(std::size_t index, const Rect& area);
    /// The layers were `before` and are now the document's.
    void layersChanged(const std::vector<EditorAnnotation>& before);
    void setSelection(const Rect& selection);

    /// Records what a gesture changed and ends it.
    void finishGesture();
    /// Ends a gesture as its release does, where the pointer last was: a release can get lost, in a dialog
    /// that opens meanwhile for one. Nothing without a gesture.
    void completeGesture();

private:
    Rect effectArea(const EditorAnnotation& effect) const;
    void damageEffectsFrom(std::size_t lowest, Rect area);
};

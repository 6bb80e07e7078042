#pragma once

#include "Overlay/OverlaySession.h"
#include "Overlay/TextCommands.h"

/// What buttons, keys and the layer list do to the tools and the layers. Every change to the layers is
/// one undo step and one report.
class LayerCommands {
public:
    LayerCommands(OverlaySession& session, TextCommands& text);

    void selectTool(AnnotationTool tool);
    void selectAnnotation(const QUuid& id);
    void deleteAnnotation(const QUuid& id);
    /// `index` counts in the list without the moved layer, oldest first.
    void reorderAnnotation(const QUuid& id, int index);

    /// Image pixels; held to 1 to 99.
    void setDrawingSize(int size);
    void stepSize(int step);
    /// What the size field reads; nothing, when that is no number, brings the current size back.
    void commitSize(std::optional<int> typed);
    void setDrawingColor(const QColor& color);
    /// The keyboard goes back to the text being typed, else to the canvas.
    void returnFocus();

    void undo();
    void redo();

    void selectAll();
    /// Moves the selected layer, or the selection where no layer is selected.
    void nudge(Point offset);

private:
    void travel(Diagnostic::Action action);
    void recordChange(const EditorState& before);
    void setLayerSize(EditorAnnotation layer, int size);

    OverlaySession& session;
    TextCommands& text;
};

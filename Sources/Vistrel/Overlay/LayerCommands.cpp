#include "Overlay/LayerCommands.h"

#include "Annotations/AnnotationTextLayout.h"
#include "Overlay/LayerMoves.h"

using Diagnostic::Action;

namespace {

constexpr int smallestSize = 1;
constexpr int largestSize = 99;

QColor opaque(QColor color) {
    color.setAlpha(255);
    return color;
}

} // namespace

LayerCommands::LayerCommands(OverlaySession& overlaySession, TextCommands& textCommands)
    : session(overlaySession), text(textCommands) {}

void LayerCommands::selectTool(AnnotationTool tool) {
    text.commit();
    session.hooks.closeColorPicker();
    session.document.tool = tool;
    session.document.state.selectedID.reset();
    session.report(Action::toolSelected, tool);
    session.hooks.focusCanvas();
    session.hooks.onChange();
}

void LayerCommands::selectAnnotation(const QUuid& id) {
    text.commit();
    OverlayDocument& document = session.document;
    const EditorAnnotation* layer = document.state.find(id);
    if (!layer)
        return;
    document.tool = AnnotationTool::select;
    document.state.selectedID = id;
    session.report(Action::layerSelected, layer->tool);
    session.hooks.focusCanvas();
    session.hooks.onChange();
}

void LayerCommands::deleteAnnotation(const QUuid& id) {
    text.commit();
    OverlayDocument& document = session.document;
    const EditorAnnotation* layer = document.state.find(id);
    if (!layer)
        return;
    const EditorState before = document.state;
    session.report(Action::layerDeleted, layer->tool);
    std::erase_if(document.state.annotations, [&](const auto& other) { return other.id == id; });
    if (document.state.selectedID == id)
        document.state.selectedID.reset();
    recordChange(before);
}

void LayerCommands::reorderAnnotation(const QUuid& id, int index) {
    text.commit();
    OverlayDocument& document = session.document;
    const EditorAnnotation* found = document.state.find(id);
    if (!found)
        return;
    const EditorState before = document.state;
    const EditorAnnotation layer = *found;
    auto& layers = document.state.annotations;
    std::erase_if(layers, [&](const auto& other) { return other.id == id; });
    layers.insert(layers.begin() + std::clamp(index, 0, static_cast<int>(layers.size())), layer);
    session.report(Action::layerReordered, layer.tool);
    recordChange(before);
}

void LayerCommands::recordChange(const EditorState& before) {
    session.document.history.record(before, session.document.state);
    session.layersChanged(before.annotations);
    session.hooks.onChange();
}

void LayerCommands::setDrawingSize(int size) {
    OverlayDocument& document = session.document;
    const std::optional<AnnotationTool> style = document.styleTool();
    if (!style)
        return;
    const int n = std::clamp(size, smallestSize, largestSize);
    session.report(Action::sizeChanged, style, n);
    if (text.isEditing()) {
        text.setSize(n);
        if (document.tool == AnnotationTool::text)
            document.toolSizes[AnnotationTool::text] = n;
    } else if (document.tool == AnnotationTool::select) {
        setLayerSize(*document.state.selected(), n);
    } else {
        document.toolSizes[document.tool] = n;
    }
    session.hooks.onChange();
}

void LayerCommands::setLayerSize(EditorAnnotation layer, int size) {
    OverlayDocument& document = session.document;
    const EditorState before = document.state;
    layer.width = document.widthForSize(size);
    layer.size = size;
    if (layer.tool == AnnotationTool::text) {
        // The box keeps its top-left corner.
        const Rect box = layer.geometryBounds();
        const Rect& selection = document.selection;
        const Size available = {selection.maxX() - box.minX(), box.maxY() - selection.minY()};
        const Size measured = AnnotationTextLayout::size(layer.text, layer.width, available);
        const double bottom = std::max(box.maxY() - measured.height, selection.minY());
        layer.points = {{box.minX(), bottom}, {box.minX() + measured.width, bottom + measured.height}};
    }
    session.replaceLayer(layer);
    document.history.record(before, document.state);
}

void LayerCommands::stepSize(int step) {
    returnFocus();
    setDrawingSize(session.document.drawingSize() + step);
}

void LayerCommands::commitSize(std::optional<int> typed) {
    if (typed)
        setDrawingSize(*typed);
    else
        session.hooks.onChange();
}

void LayerCommands::returnFocus() {
    if (text.isEditing())
        text.openEditor()->focus();
    else
        session.hooks.focusCanvas();
}

void LayerCommands::setDrawingColor(const QColor& color) {
    OverlayDocument& document = session.document;
    session.report(Action::colorChanged, document.styleTool());
    if (text.isEditing()) {
        text.setColor(opaque(color));
        if (document.tool == AnnotationTool::text)
            document.toolColors[AnnotationTool::text] = opaque(color);
    } else if (document.tool == AnnotationTool::select) {
        const EditorAnnotation* selected = document.state.selected();
        if (selected && !AnnotationTools::isEffect(selected->tool)) {
            const EditorState before = document.state;
            EditorAnnotation layer = *selected;
            layer.color = opaque(color);
            session.replaceLayer(layer);
            document.history.record(before, document.state);
        }
    } else {
        document.toolColors[document.tool] = opaque(color);
    }
    session.hooks.onChange();
}

void LayerCommands::undo() {
    travel(Action::undo);
}

void LayerCommands::redo() {
    travel(Action::redo);
}

void LayerCommands::travel(Action action) {
    text.commit();
    session.finishGesture();
    OverlayDocument& document = session.document;
    std::optional<EditorState> shown = action == Action::undo ? document.history.undo(document.state)
                                                              : document.history.redo(document.state);
    if (!shown)
        return;
    const EditorState before = std::exchange(document.state, *std::move(shown));
    session.report(action);
    session.layersChanged(before.annotations);
    session.hooks.onChange();
}

void LayerCommands::selectAll() {
    session.document.state.selectedID.reset();
    session.setSelection(session.document.bounds());
    session.report(Action::selectionCreated);
    session.hooks.onSelection();
    session.hooks.onChange();
}

void LayerCommands::nudge(Point offset) {
    OverlayDocument& document = session.document;
    const EditorAnnotation* layer = document.state.selected();
    if (layer) {
        const EditorState before = document.state;
        session.replaceLayer(layer->movedBy(LayerMoves::clampedOffset(*layer, offset, document.selection)));
        document.history.record(before, document.state);
        session.report(Action::layerMoved);
    } else {
        session.setSelection(LayerMoves::movedSelection(document.selection, offset, document.bounds()));
        session.report(Action::selectionMoved);
    }
    session.hooks.onChange();
}

#include "Overlay/ControlState.h"

namespace {

QString toolTip(std::optional<AnnotationTool> style) {
    if (style == AnnotationTool::pixelate)
        return QStringLiteral("Pixel block size (1–99)");
    if (style == AnnotationTool::text)
        return QStringLiteral("Text size (1–99)");
    return QStringLiteral("Stroke width (1–99)");
}

} // namespace

ControlState ControlState::of(const OverlayDocument& document) {
    const std::optional<AnnotationTool> style = document.styleTool();
    ControlState state{.sizeEnabled = style.has_value(),
                       .size = document.drawingSize(),
                       .sizeToolTip = toolTip(style),
                       .colorEnabled = style && !AnnotationTools::isEffect(*style),
                       .color = document.drawingColor(),
                       .undoEnabled = !document.history.past.empty(),
                       .redoEnabled = !document.history.future.empty(),
                       .tool = document.tool,
                       .selectedID = document.state.selectedID,
                       .rows = {}};
    state.rows.reserve(document.state.annotations.size());
    for (const EditorAnnotation& layer : document.state.annotations)
        state.rows.push_back({layer.id, layer.tool, layer.text});
    return state;
}

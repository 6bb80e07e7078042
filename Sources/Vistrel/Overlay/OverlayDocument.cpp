#include "Overlay/OverlayDocument.h"

namespace {

constexpr QRgb red = qRgb(255, 59, 48);
constexpr QRgb yellow = qRgb(255, 204, 0);

QHash<AnnotationTool, int> initialSizes() {
    return {{AnnotationTool::pen, 3},
            {AnnotationTool::arrow, 3},
            {AnnotationTool::rectangle, 3},
            {AnnotationTool::marker, 16}};
}

QHash<AnnotationTool, QColor> initialColors() {
    return {{AnnotationTool::pen, red},
            {AnnotationTool::arrow, red},
            {AnnotationTool::rectangle, red},
            {AnnotationTool::marker, yellow}};
}

} // namespace

OverlayDocument::OverlayDocument() : toolSizes(initialSizes()), toolColors(initialColors()) {}

void OverlayDocument::reset(const QImage& captured, double scale, Size size) {
    image = captured;
    viewSize = size;
    displayScale = scale;
    reducedRetina = scale > 1 && hasImage() && size.width > 0 &&
                    std::abs(image.width() / size.width - scale * 0.5) < 0.01;
    clearEditing();
    toolSizes = initialSizes();
    toolColors = initialColors();
}

void OverlayDocument::clearEditing() {
    selection = {};
    tool = AnnotationTool::select;
    state = {};
    history.clear();
    pendingChange.reset();
    drag.reset();
    text.reset();
}

bool OverlayDocument::isCreatingSelection() const {
    const auto* creation = drag ? std::get_if<Creation>(&*drag) : nullptr;
    return creation && creation->valid;
}

Size OverlayDocument::imageSize() const {
    return {static_cast<double>(image.width()), static_cast<double>(image.height())};
}

double OverlayDocument::pointsPerSize() const {
    const double pointsPerPixel = hasImage() ? viewSize.width / image.width() : 1;
    return pointsPerPixel * (reducedRetina ? 2 : 1);
}

int OverlayDocument::sizeForWidth(double width) const {
    return static_cast<int>(std::lround(width / pointsPerSize()));
}

int OverlayDocument::sizeOf(const EditorAnnotation& layer) const {
    return layer.size ? *layer.size : sizeForWidth(layer.width);
}

std::optional<AnnotationTool> OverlayDocument::styleTool() const {
    if (text)
        return AnnotationTool::text;
    if (tool != AnnotationTool::select)
        return tool;
    const EditorAnnotation* layer = state.selected();
    return layer ? std::optional(layer->tool) : std::nullopt;
}

int OverlayDocument::drawingSize() const {
    if (text)
        return text->size;
    const EditorAnnotation* layer = tool == AnnotationTool::select ? state.selected() : nullptr;
    if (layer)
        return sizeOf(*layer);
    return toolSizes.value(tool, AnnotationTools::defaultSize(tool));
}

QColor OverlayDocument::drawingColor() const {
    if (text)
        return text->color;
    if (tool != AnnotationTool::select)
        return toolColors.value(tool, defaultColor());
    const EditorAnnotation* layer = state.selected();
    return layer ? layer->color : defaultColor();
}

std::vector<EditorAnnotation> OverlayDocument::visibleLayers() const {
    std::vector<EditorAnnotation> visible;
    std::ranges::copy_if(state.annotations, std::back_inserter(visible),
                         [this](const auto& layer) { return !text || text->layerID != layer.id; });
    return visible;
}

QColor OverlayDocument::defaultColor() {
    return red;
}

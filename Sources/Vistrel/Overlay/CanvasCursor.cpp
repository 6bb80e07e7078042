#include "Overlay/CanvasCursor.h"

#include "Overlay/OverlayHitTest.h"
#include "VistrelCore/CaptureGeometry.h"

namespace {

using Shape = CanvasCursor::Shape;

CanvasCursor resizing(int handle) {
    return {.shape = Shape::resize, .handle = handle};
}

/// A gesture's own pointer; drawing a layer has none.
struct GestureCursor {
    std::optional<CanvasCursor> operator()(const Creation&) const { return CanvasCursor{}; }
    std::optional<CanvasCursor> operator()(const MoveSelection&) const {
        return CanvasCursor{.shape = Shape::closedHand};
    }
    std::optional<CanvasCursor> operator()(const ResizeSelection& drag) const {
        return resizing(drag.handle);
    }
    std::optional<CanvasCursor> operator()(const MoveAnnotation&) const {
        return CanvasCursor{.shape = Shape::closedHand};
    }
    std::optional<CanvasCursor> operator()(const ResizeAnnotation& drag) const {
        return resizing(2 * drag.handle);
    }
    std::optional<CanvasCursor> operator()(const DragEndpoint&) const { return CanvasCursor{}; }
    std::optional<CanvasCursor> operator()(const Annotate&) const { return std::nullopt; }
};

} // namespace

CanvasCursor CanvasCursor::at(Point p, const OverlayDocument& document, bool overPanel) {
    if (document.drag) {
        if (const auto cursor = std::visit(GestureCursor(), *document.drag))
            return *cursor;
    }
    if (overPanel)
        return {.shape = Shape::arrow};
    const bool selecting = document.tool == AnnotationTool::select;
    if (const EditorAnnotation* layer = selecting ? document.state.selected() : nullptr) {
        if (const auto handle = OverlayHitTest::layerHandle(*layer, p))
            return OverlayHitTest::hasEndHandles(*layer) ? CanvasCursor{} : resizing(2 * *handle);
    }
    if (const auto handle = OverlayHitTest::resizeHandle(document, p))
        return resizing(*handle);
    if (!CaptureGeometry::holdsPixel(document.selection, p))
        return {};
    return selecting ? CanvasCursor{.shape = Shape::openHand} : drawing(document);
}

CanvasCursor CanvasCursor::drawing(const OverlayDocument& document) {
    if (document.tool == AnnotationTool::text)
        return {.shape = Shape::iBeam};
    if (!AnnotationTools::isFreehand(document.tool))
        return {};
    return {.shape = Shape::brush, .diameter = document.widthForSize(document.drawingSize())};
}

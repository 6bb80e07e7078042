#include "Overlay/GestureMachine.h"

#include "Overlay/LayerMoves.h"
#include "Overlay/OverlayHitTest.h"
#include "VistrelCore/CaptureGeometry.h"

namespace {

// Both sides of a new selection must be longer than this, in image pixels.
constexpr double shortestSelection = 5;
constexpr double smallestLayer = 1;

} // namespace

GestureMachine::GestureMachine(OverlaySession& overlaySession, TextCommands& textCommands)
    : session(overlaySession), text(textCommands) {}

void GestureMachine::press(const PointerEvent& event) {
    OverlayDocument& document = session.document;
    if (!document.hasImage())
        return;
    session.completeGesture();
    const Point p = CaptureGeometry::clamped(event.location, document.bounds());
    const bool isOutside = !CaptureGeometry::holdsPixel(document.selection, p);
    const bool wasClickOutside = std::exchange(clickedOutside, isOutside);
    if (event.clickCount == 2 && wasClickOutside && isOutside && session.hooks.doubleClickOutsideToCancel()) {
        cancelFromOutside();
        return;
    }
    text.commit();
    session.hooks.closeColorPicker();
    session.hooks.focusCanvas();
    begin(p, event.clickCount);
    session.hooks.onChange();
}

void GestureMachine::cancelFromOutside() {
    session.document.drag.reset();
    session.document.pendingChange.reset();
    text.discard();
    session.hooks.closeColorPicker();
    session.hooks.onClose();
}

void GestureMachine::begin(Point p, int clickCount) {
    OverlayDocument& document = session.document;
    const bool inside = CaptureGeometry::holdsPixel(document.selection, p);
    switch (document.tool) {
    case AnnotationTool::select:
        if (beginOnLayer(p, clickCount) || beginOnSelection(p))
            return;
        break;
    case AnnotationTool::text:
        if (!inside)
            break;
        session.hooks.onSelection();
        text.begin(p, nullptr);
        return;
    default:
        if (!inside)
            break;
        session.hooks.onSelection();
        beginDrawing(p);
        return;
    }
    document.drag = Creation{.start = towardsEdge(p),
                             .selection = document.selection,
                             .state = document.state,
                             .tool = document.tool};
}

bool GestureMachine::beginOnLayer(Point p, int clickCount) {
    OverlayDocument& document = session.document;
    if (const EditorAnnotation* selected = document.state.selected()) {
        if (const auto handle = OverlayHitTest::layerHandle(*selected, p)) {
            if (OverlayHitTest::hasEndHandles(*selected)) {
                // Handle 1 is the last point, which is also point 1 of a line.
                beginLayerChange(
                    DragEndpoint{.index = static_cast<std::size_t>(*handle), .original = *selected});
            } else {
                beginLayerChange(ResizeAnnotation{.handle = *handle, .original = *selected});
            }
            return true;
        }
    }
    if (!CaptureGeometry::holdsPixel(document.selection, p))
        return false;
    const EditorAnnotation* layer = OverlayHitTest::layerAt(document, p);
    if (!layer)
        return false;
    document.state.selectedID = layer->id;
    if (clickCount == 2 && layer->tool == AnnotationTool::text)
        text.begin(p, layer);
    else
        beginLayerChange(MoveAnnotation{.start = p, .original = *layer});
    return true;
}

bool GestureMachine::beginOnSelection(Point p) {
    OverlayDocument& document = session.document;
    const auto handle = OverlayHitTest::resizeHandle(document, p);
    if (handle)
        document.drag = ResizeSelection{.handle = *handle, .original = document.selection};
    else if (CaptureGeometry::holdsPixel(document.selection, p))
        document.drag = MoveSelection{.start = p, .original = document.selection};
    else
        return false;
    document.state.selectedID.reset();
    session.hooks.onSelection();
    return true;
}

void GestureMachine::beginDrawing(Point p) {
    OverlayDocument& document = session.document;
    const int size = document.drawingSize();
    const EditorAnnotation layer{.id = QUuid::createUuid(),
                                 .tool = document.tool,
                                 .width = document.widthForSize(size),
                                 .size = size,
                                 .color = document.drawingColor(),
                                 .points = {p, p},
                                 .text = {}};
    beginLayerChange(Annotate{.id = layer.id});
    document.state.annotations.push_back(layer);
    document.state.selectedID = layer.id;
    session.layerChanged(document.state.annotations.size() - 1, layer.paintedBounds());
}

void GestureMachine::beginLayerChange(Drag drag) {
    session.document.pendingChange = session.document.state;
    session.document.drag = std::move(drag);
}

void GestureMachine::drag(Point location) {
    if (!session.document.hasImage() || !session.document.drag)
        return;
    applyDrag(CaptureGeometry::clamped(location, session.document.bounds()));
    session.hooks.onChange();
}

void GestureMachine::release(Point location) {
    OverlayDocument& document = session.document;
    if (!document.hasImage())
        return;
    if (document.drag) {
        applyDrag(CaptureGeometry::clamped(location, document.bounds()));
        clickedOutside = clickedOutside && !document.isCreatingSelection();
        session.completeGesture();
    }
    session.hooks.onChange();
}

void GestureMachine::applyDrag(Point p) {
    std::visit([this, p](auto& drag) { apply(drag, p); }, *session.document.drag);
}

void GestureMachine::apply(Creation& creation, Point p) {
    OverlayDocument& document = session.document;
    const Rect r = CaptureGeometry::rectBetween(creation.start, towardsEdge(p), document.bounds());
    const Size image = document.imageSize();
    const bool wasValid = creation.valid;
    creation.valid = r.width * image.width / document.viewSize.width > shortestSelection &&
                     r.height * image.height / document.viewSize.height > shortestSelection;
    document.state = creation.valid ? EditorState() : creation.state;
    document.tool = creation.valid ? AnnotationTool::select : creation.tool;
    session.setSelection(creation.valid ? r : creation.selection);
    if (creation.valid != wasValid)
        session.damage.add(creation.selection);
}

void GestureMachine::apply(const MoveSelection& move, Point p) {
    session.setSelection(
        LayerMoves::movedSelection(move.original, p - move.start, session.document.bounds()));
}

void GestureMachine::apply(const ResizeSelection& resize, Point p) {
    const Rect& original = resize.original;
    double left = original.minX();
    double right = original.maxX();
    double bottom = original.minY();
    double top = original.maxY();
    const Point to = towardsEdge(p);
    const int h = resize.handle;
    if (h == 0 || h == 6 || h == 7)
        left = to.x;
    if (h == 2 || h == 3 || h == 4)
        right = to.x;
    if (h == 0 || h == 1 || h == 2)
        bottom = to.y;
    if (h == 4 || h == 5 || h == 6)
        top = to.y;
    session.setSelection(
        CaptureGeometry::rectBetween({left, bottom}, {right, top}, session.document.bounds()));
}

void GestureMachine::apply(const MoveAnnotation& move, Point p) {
    const Point offset = LayerMoves::clampedOffset(move.original, p - move.start, session.document.selection);
    session.replaceLayer(move.original.movedBy(offset));
}

void GestureMachine::apply(const ResizeAnnotation& resize, Point p) {
    const std::vector<Point> corners = OverlayHitTest::layerHandles(resize.original);
    const Point fixed = corners[static_cast<std::size_t>((resize.handle + 2) % 4)];
    const Rect r = CaptureGeometry::rectBetween(fixed, p, session.document.selection);
    const Rect g = resize.original.geometryBounds();
    if (r.width > smallestLayer && r.height > smallestLayer && g.width > 0 && g.height > 0)
        session.replaceLayer(resize.original.resizedTo(r));
}

void GestureMachine::apply(const DragEndpoint& endpoint, Point p) {
    EditorAnnotation layer = endpoint.original;
    layer.points[endpoint.index] = CaptureGeometry::clamped(p, session.document.selection);
    session.replaceLayer(layer);
}

void GestureMachine::apply(const Annotate& annotate, Point p) {
    auto& layers = session.document.state.annotations;
    // A command may have taken the layer away while it was being drawn.
    if (layers.empty() || layers.back().id != annotate.id)
        return;
    EditorAnnotation& layer = layers.back();
    const std::size_t index = layers.size() - 1;
    if (AnnotationTools::isFreehand(layer.tool)) {
        const Point last = layer.points.back();
        layer.points.push_back(p);
        const Rect segment = {last.x, last.y, p.x - last.x, p.y - last.y};
        session.layerChanged(index, segment.standardized().insetBy(-layer.width / 2));
    } else {
        session.damage.add(layer.paintedBounds());
        layer.points[1] = p;
        session.layerChanged(index, layer.paintedBounds());
    }
}

// The pointer never leaves the display, so on its last row or column it means the display's edge.
Point GestureMachine::towardsEdge(Point p) const {
    const OverlayDocument& document = session.document;
    const double devicePixel = 1 / document.displayScale;
    const double slack = devicePixel / 16;
    return {p.x >= document.viewSize.width - devicePixel - slack ? document.viewSize.width : p.x,
            p.y <= devicePixel + slack ? 0 : p.y};
}

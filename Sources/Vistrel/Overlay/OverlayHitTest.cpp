#include "Overlay/OverlayHitTest.h"

#include "VistrelCore/CaptureGeometry.h"

#include <span>

namespace {

constexpr double selectionHandleReach = 8;
constexpr double layerHandleReach = 7;
constexpr double areaReach = 4;
constexpr double narrowestLine = 10;

bool isNear(Point a, Point b, double reach) {
    return std::abs(a.x - b.x) <= reach && std::abs(a.y - b.y) <= reach;
}

double squaredDistance(Point p, Point a, Point b) {
    const Point along = b - a;
    const Point toPoint = p - a;
    const double length = along.x * along.x + along.y * along.y;
    const double t =
        length > 0 ? std::clamp((toPoint.x * along.x + toPoint.y * along.y) / length, 0.0, 1.0) : 0.0;
    const Point off = {toPoint.x - t * along.x, toPoint.y - t * along.y};
    return off.x * off.x + off.y * off.y;
}

// A line stroked with round caps and joins is exactly the set of points within half its width.
bool isOnPolyline(std::span<const Point> points, Point p, double reach) {
    const double limit = reach * reach;
    if (points.size() == 1)
        return squaredDistance(p, points[0], points[0]) <= limit;
    for (std::size_t i = 1; i < points.size(); ++i) {
        if (squaredDistance(p, points[i - 1], points[i]) <= limit)
            return true;
    }
    return false;
}

bool isOnPath(const QPainterPath& path, Point p, double reach) {
    for (const QPolygonF& polygon : path.toSubpathPolygons()) {
        std::vector<Point> points;
        std::ranges::transform(polygon, std::back_inserter(points), [](QPointF vertex) {
            return Point{vertex.x(), vertex.y()};
        });
        if (isOnPolyline(points, p, reach))
            return true;
    }
    return false;
}

QPainterPath outline(const EditorAnnotation& layer) {
    const Rect g = layer.geometryBounds();
    const QRectF rect(g.x, g.y, g.width, g.height);
    switch (layer.tool) {
    case AnnotationTool::rectangle: {
        QPainterPath path;
        path.addRect(rect);
        return path;
    }
    case AnnotationTool::ellipse: {
        QPainterPath path;
        path.addEllipse(rect);
        return path;
    }
    default:
        return layer.path();
    }
}

} // namespace

Point OverlayHitTest::selectionHandle(const Rect& selection, int handle) {
    const Rect r = selection.standardized();
    switch (handle) {
    case 0:
        return {r.minX(), r.minY()};
    case 1:
        return {r.midX(), r.minY()};
    case 2:
        return {r.maxX(), r.minY()};
    case 3:
        return {r.maxX(), r.midY()};
    case 4:
        return {r.maxX(), r.maxY()};
    case 5:
        return {r.midX(), r.maxY()};
    case 6:
        return {r.minX(), r.maxY()};
    default:
        return {r.minX(), r.midY()};
    }
}

std::optional<int> OverlayHitTest::resizeHandle(const OverlayDocument& document, Point p) {
    if (document.tool != AnnotationTool::select || !document.hasSelection())
        return std::nullopt;
    const Rect& selection = document.selection;
    for (const int corner : {0, 2, 4, 6}) {
        if (isNear(p, selectionHandle(selection, corner), selectionHandleReach))
            return corner;
    }
    const Rect reach = selection.insetBy(-selectionHandleReach);
    if (p.x < reach.minX() || p.x > reach.maxX() || p.y < reach.minY() || p.y > reach.maxY())
        return std::nullopt;
    if (std::abs(p.x - selection.minX()) <= selectionHandleReach)
        return 7;
    if (std::abs(p.x - selection.maxX()) <= selectionHandleReach)
        return 3;
    if (std::abs(p.y - selection.minY()) <= selectionHandleReach)
        return 1;
    if (std::abs(p.y - selection.maxY()) <= selectionHandleReach)
        return 5;
    return std::nullopt;
}

bool OverlayHitTest::hasEndHandles(const EditorAnnotation& layer) {
    return layer.tool == AnnotationTool::line || layer.tool == AnnotationTool::arrow;
}

std::vector<Point> OverlayHitTest::layerHandles(const EditorAnnotation& layer) {
    if (layer.points.empty())
        return {};
    if (hasEndHandles(layer))
        return {layer.points.front(), layer.points.back()};
    const Rect g = layer.geometryBounds();
    return {{g.minX(), g.minY()}, {g.maxX(), g.minY()}, {g.maxX(), g.maxY()}, {g.minX(), g.maxY()}};
}

std::optional<int> OverlayHitTest::layerHandle(const EditorAnnotation& layer, Point p) {
    const std::vector<Point> handles = layerHandles(layer);
    const auto found = std::ranges::find_if(handles, [p](Point h) { return isNear(p, h, layerHandleReach); });
    if (found == handles.end())
        return std::nullopt;
    return static_cast<int>(found - handles.begin());
}

bool OverlayHitTest::hits(const EditorAnnotation& layer, Point p) {
    if (layer.points.empty())
        return false;
    if (layer.tool == AnnotationTool::pixelate || layer.tool == AnnotationTool::text)
        return CaptureGeometry::holdsPixel(layer.geometryBounds().insetBy(-areaReach), p);
    const double reach = std::max(layer.width, narrowestLine) / 2;
    const Rect area = layer.paintedBounds().insetBy(-reach);
    if (!CaptureGeometry::holdsPixel(area, p))
        return false;
    if (layer.isDot() || AnnotationTools::isFreehand(layer.tool))
        return isOnPolyline(layer.points, p, reach);
    return isOnPath(outline(layer), p, reach);
}

const EditorAnnotation* OverlayHitTest::layerAt(const OverlayDocument& document, Point p) {
    const auto& layers = document.state.annotations;
    const auto found =
        std::find_if(layers.rbegin(), layers.rend(), [p](const auto& l) { return hits(l, p); });
    return found == layers.rend() ? nullptr : &*found;
}

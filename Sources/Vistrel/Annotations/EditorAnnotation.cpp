#include "Annotations/EditorAnnotation.h"

#include <numbers>

namespace {

double barbLength(double width) {
    constexpr double shortestBarb = 14;
    return std::max(3 * width, shortestBarb);
}

void addArrowHead(QPainterPath& path, const EditorAnnotation& arrow) {
    constexpr double barbAngle = std::numbers::pi / 6;
    const Point first = arrow.points.front();
    const Point tip = arrow.points.back();
    const double direction = std::atan2(tip.y - first.y, tip.x - first.x);
    const double length = barbLength(arrow.width);
    for (const double angle : {direction - barbAngle, direction + barbAngle}) {
        path.moveTo(tip.x, tip.y);
        path.lineTo(tip.x - length * std::cos(angle), tip.y - length * std::sin(angle));
    }
}

} // namespace

Rect EditorAnnotation::geometryBounds() const {
    if (points.empty())
        return {};
    double left = points.front().x;
    double right = left;
    double bottom = points.front().y;
    double top = bottom;
    for (const Point& p : points) {
        left = std::min(left, p.x);
        right = std::max(right, p.x);
        bottom = std::min(bottom, p.y);
        top = std::max(top, p.y);
    }
    return {left, bottom, right - left, top - bottom};
}

Rect EditorAnnotation::bounds() const {
    const Rect geometry = geometryBounds();
    if (tool == AnnotationTool::pixelate || tool == AnnotationTool::text)
        return geometry;
    return geometry.insetBy(-width / 2);
}

Rect EditorAnnotation::paintedBounds() const {
    double reach = width / 2;
    if (tool == AnnotationTool::arrow)
        reach += barbLength(width);
    else if (tool == AnnotationTool::text)
        reach = width;
    else if (tool == AnnotationTool::pixelate)
        reach = 0;
    // Smoothed edges, and boxes that are rounded outwards to whole pixels.
    constexpr double edge = 2;
    return geometryBounds().insetBy(-reach - edge);
}

bool EditorAnnotation::isDot() const {
    return tool != AnnotationTool::arrow && !points.empty() && geometryBounds().size() == Size{};
}

QPainterPath EditorAnnotation::path() const {
    QPainterPath path;
    if (points.empty())
        return path;
    path.reserve(static_cast<int>(points.size()) + 4);
    path.moveTo(points.front().x, points.front().y);
    for (std::size_t i = 1; i < points.size(); ++i)
        path.lineTo(points[i].x, points[i].y);
    if (tool == AnnotationTool::arrow)
        addArrowHead(path, *this);
    return path;
}

EditorAnnotation EditorAnnotation::movedBy(Point offset) const {
    EditorAnnotation moved = *this;
    for (Point& p : moved.points)
        p = p + offset;
    return moved;
}

EditorAnnotation EditorAnnotation::resizedTo(const Rect& target) const {
    constexpr double smallestExtent = 0.001;
    const Rect from = geometryBounds();
    const double factorX = std::max(from.width, smallestExtent);
    const double factorY = std::max(from.height, smallestExtent);
    EditorAnnotation resized = *this;
    for (Point& p : resized.points)
        p = {target.minX() + std::abs(target.width) * (p.x - from.x) / factorX,
             target.minY() + std::abs(target.height) * (p.y - from.y) / factorY};
    return resized;
}

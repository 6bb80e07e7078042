#include "VistrelCore/CaptureGeometry.h"

namespace {

/// An edge that misses a pixel boundary by less than this lies on it: at a scale such as 1.1 the way
/// from pixels to points and back leaves an error of about 1e-12, which must not grow the picture.
constexpr double edgeTolerancePixels = 1e-6;

// Not std::clamp: a value that is not a number has to yield the limit.
double atLeastZero(double value) {
    return value >= 0 ? value : 0;
}
double below(double value, double limit) {
    return value < limit ? value : limit;
}
double floorEdge(double value) {
    return std::floor(value + edgeTolerancePixels);
}
double ceilEdge(double value) {
    return std::ceil(value - edgeTolerancePixels);
}

} // namespace

Rect CaptureGeometry::pixelRect(const Rect& selection, Size viewSize, Size imageSize) {
    if (viewSize.width <= 0 || viewSize.height <= 0 || imageSize.width <= 0 || imageSize.height <= 0)
        return {};
    const auto visible = selection.standardized().intersection({0, 0, viewSize.width, viewSize.height});
    if (!visible || visible->width <= 0 || visible->height <= 0)
        return {};
    const double scaleX = imageSize.width / viewSize.width;
    const double scaleY = imageSize.height / viewSize.height;
    const double left = atLeastZero(floorEdge(scaleX * visible->minX()));
    const double right = below(ceilEdge(scaleX * visible->maxX()), imageSize.width);
    const double top = atLeastZero(floorEdge(scaleY * (viewSize.height - visible->maxY())));
    const double bottom = below(ceilEdge(scaleY * (viewSize.height - visible->minY())), imageSize.height);
    if (right <= left || bottom <= top)
        return {};
    return {left, top, right - left, bottom - top};
}

Rect CaptureGeometry::labelRect(const Rect& selection, Size labelSize, const Rect& bounds) {
    constexpr double badgeGap = 6;
    const Rect area = bounds.standardized();
    const double width = std::min(area.width, labelSize.width);
    const double height = std::min(area.height, labelSize.height);
    double y = selection.maxY() + badgeGap;
    if (area.maxY() < y + height)
        y = selection.maxY() - badgeGap - height;
    const double x = selection.midX() - width * 0.5;
    return {std::min(std::max(x, area.minX()), area.maxX() - width),
            std::min(std::max(y, area.minY()), area.maxY() - height), width, height};
}

Rect CaptureGeometry::rectBetween(Point from, Point to, const Rect& bounds) {
    const Point a = clamped(from, bounds);
    const Point b = clamped(to, bounds);
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::abs(a.x - b.x), std::abs(a.y - b.y)};
}

bool CaptureGeometry::holdsPixel(const Rect& rect, Point pointer) {
    // What was computed may miss the edge it means by a rounding error.
    constexpr double slack = 1e-6;
    return pointer.x >= rect.minX() - slack && pointer.x < rect.maxX() - slack &&
           pointer.y > rect.minY() + slack && pointer.y <= rect.maxY() + slack;
}

Point CaptureGeometry::clamped(Point point, const Rect& to) {
    return {std::min(std::max(point.x, to.minX()), to.maxX()),
            std::min(std::max(point.y, to.minY()), to.maxY())};
}

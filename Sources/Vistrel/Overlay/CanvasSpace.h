#pragma once

#include "VistrelCore/CaptureGeometry.h"
#include "VistrelCore/Geometry.h"

#include <QPointF>
#include <QRect>
#include <QTransform>

/// Between view points (y up) and the display's device pixels (y down), in which the canvas is painted,
/// so that lines and edges lie on whole pixels at every scale.
struct CanvasSpace {
    Size viewSize;
    QSize pixels;

    double scale() const { return viewSize.width > 0 ? pixels.width() / viewSize.width : 1; }
    /// A length in whole pixels, at least one.
    int length(double points) const { return std::max(1, static_cast<int>(std::lround(points * scale()))); }

    /// What a pointer here means: the top-left corner of the pixel it is over.
    Point pointer(QPointF widgetPoint) const {
        // Points came from pixels, with a rounding error.
        constexpr double slack = 1e-6;
        const auto corner = [this](double points) { return std::floor(points * scale() + slack) / scale(); };
        return {corner(widgetPoint.x()), viewSize.height - corner(widgetPoint.y())};
    }
    QPointF toPixels(Point p) const {
        return {p.x * pixels.width() / viewSize.width,
                (viewSize.height - p.y) * pixels.height() / viewSize.height};
    }
    /// Every pixel that the rectangle touches.
    QRect pixelsOf(const Rect& rect) const {
        const Rect r = CaptureGeometry::pixelRect(
            rect, viewSize, {static_cast<double>(pixels.width()), static_cast<double>(pixels.height())});
        return QRect(static_cast<int>(r.x), static_cast<int>(r.y), static_cast<int>(r.width),
                     static_cast<int>(r.height));
    }
    QTransform viewToPixels() const {
        return QTransform(pixels.width() / viewSize.width, 0, 0, -pixels.height() / viewSize.height, 0,
                          pixels.height());
    }

    friend bool operator==(const CanvasSpace&, const CanvasSpace&) = default;
};

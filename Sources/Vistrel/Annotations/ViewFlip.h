#pragma once

#include "VistrelCore/Geometry.h"

#include <QPainter>
#include <QPointF>
#include <QRectF>

/// The one place where y changes direction: view points have their origin bottom-left and y up, the
/// toolkit's widget coordinates theirs top-left and y down. Both are in points.
struct ViewFlip {
    /// Height of the view in points (native height divided by the scale, not rounded).
    double height = 0;

    Point toView(QPointF p) const { return {p.x(), height - p.y()}; }
    QPointF toWidget(Point p) const { return {p.x, height - p.y}; }
    QRectF toWidget(const Rect& r) const {
        return {r.minX(), height - r.maxY(), std::abs(r.width), std::abs(r.height)};
    }
    Rect toView(const QRectF& r) const { return {r.left(), height - r.bottom(), r.width(), r.height()}; }

    /// Makes the painter's coordinates view points.
    void apply(QPainter& painter) const {
        painter.translate(0, height);
        painter.scale(1, -1);
    }
};

inline QRectF toQRectF(const Rect& r) {
    return {r.minX(), r.minY(), std::abs(r.width), std::abs(r.height)};
}
inline QPointF toQPointF(Point p) {
    return {p.x, p.y};
}

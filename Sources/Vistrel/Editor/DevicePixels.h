#pragma once

#include <QPainter>
#include <QRectF>

/// Moves edges onto whole device pixels, at any display scale. Values are the painter's own coordinates.
namespace DevicePixels {

inline QPointF aligned(const QPainter& painter, QPointF point) {
    const QTransform toDevice = painter.deviceTransform();
    const QPointF device = toDevice.map(point);
    return toDevice.inverted().map(QPointF(std::round(device.x()), std::round(device.y())));
}

inline QRectF aligned(const QPainter& painter, const QRectF& rect) {
    return {aligned(painter, rect.topLeft()), aligned(painter, rect.bottomRight())};
}

/// Device pixels in one of the painter's units. (The painter's device may be a widget that is being
/// rendered somewhere else.)
inline double ratio(const QPainter& painter) {
    const QTransform toDevice = painter.deviceTransform();
    return std::max(std::hypot(toDevice.m11(), toDevice.m12()), 0.01);
}

/// Width of one device pixel.
inline double one(const QPainter& painter) {
    return 1 / ratio(painter);
}

/// Whole widget points: the origin and the size are rounded apart, so that a panel that moves does not
/// change its size by a point now and then.
inline QRect rounded(const QRectF& frame) {
    return {qRound(frame.x()), qRound(frame.y()), qRound(frame.width()), qRound(frame.height())};
}

/// Neighbouring rectangles share their rounded edges.
inline QRect roundedEdges(const QRectF& rect) {
    return {QPoint(qRound(rect.left()), qRound(rect.top())),
            QPoint(qRound(rect.right()) - 1, qRound(rect.bottom()) - 1)};
}

} // namespace DevicePixels

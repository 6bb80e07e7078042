#pragma once

#include <QEnterEvent>
#include <QMouseEvent>
#include <QWidget>

/// Where a pointer event lies, in a widget's points with their fraction. The position that the toolkit
/// hands to a widget is rounded to whole points, which above scale 1 are several pixels.
namespace ExactPosition {

inline QPointF of(const QMouseEvent& event, const QWidget& widget) {
    // The window's own position: the global one would go by another display's scale once the pointer is
    // there.
    return event.scenePosition() - QPointF(widget.mapTo(widget.window(), QPoint()));
}

inline QPointF of(const QEnterEvent& event, const QWidget& widget) {
    return widget.mapFromGlobal(event.globalPosition());
}

} // namespace ExactPosition

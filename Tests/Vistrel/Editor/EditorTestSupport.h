#pragma once

#include "Annotations/EditorAnnotation.h"

#include <QCoreApplication>
#include <QEnterEvent>
#include <QTest>
#include <QWidget>
#include <QWindow>

/// What the editor's tests share.
namespace EditorTestSupport {

inline EditorAnnotation layer(AnnotationTool tool, const QString& text = {}) {
    EditorAnnotation annotation;
    annotation.id = QUuid::createUuid();
    annotation.tool = tool;
    annotation.text = text;
    return annotation;
}

/// The pointer enters a control, wherever the real one is.
inline void enter(QWidget& widget) {
    const QPointF center = QRectF(widget.rect()).center();
    QEnterEvent event(center, widget.mapTo(widget.window(), center), widget.mapToGlobal(center));
    QCoreApplication::sendEvent(&widget, &event);
}

inline void leave(QWidget& widget) {
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(&widget, &event);
}

/// Counts the mouse events that reach a canvas.
class Canvas : public QWidget {
public:
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++presses; }
};

/// A window that is shown and has the keyboard.
inline void present(QWidget& window) {
    window.show();
    window.activateWindow();
    QCoreApplication::processEvents();
}

} // namespace EditorTestSupport

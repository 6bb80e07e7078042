#pragma once

#include "Annotations/EditorAnnotation.h"

#include <QCoreApplication>
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

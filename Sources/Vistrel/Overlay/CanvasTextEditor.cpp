#include "Overlay/CanvasTextEditor.h"

#include "Annotations/AnnotationTextLayout.h"
#include "Editor/AnnotationTextView.h"

#include <QGuiApplication>
#include <QInputMethod>

CanvasTextEditor::CanvasTextEditor(QWidget& canvas, ViewFlip viewFlip, const TextEditorSetup& setup)
    : view(new AnnotationTextView(&canvas)), flip(viewFlip), size(setup.fontSize) {
    view->setAvailableSize(setup.availableSize);
    view->setAnchor(flip.toWidget(setup.anchor));
    view->setFontSize(size);
    view->setInkColor(setup.color);
    view->setString(setup.text);
    view->fit();
    view->show();
    view->raise();
}

CanvasTextEditor::~CanvasTextEditor() {
    if (!view)
        return;
    // One of the view's own events may be under way.
    view->onCommit = nullptr;
    view->onCancel = nullptr;
    view->hide();
    view->deleteLater();
}

QString CanvasTextEditor::text() {
    if (view->hasFocus())
        QGuiApplication::inputMethod()->commit();
    return view->string();
}

void CanvasTextEditor::setFontSize(double points) {
    size = points;
    view->setFontSize(points);
    view->fit();
}

void CanvasTextEditor::setColor(const QColor& color) {
    view->setInkColor(color);
}

Rect CanvasTextEditor::fittedFrame() {
    view->fit();
    return flip.toView(view->box());
}

void CanvasTextEditor::focus() {
    view->setFocus();
}

bool CanvasTextEditor::hasFocus() const {
    return view->hasFocus();
}

void CanvasTextEditor::setCallbacks(std::function<void()> onCommit, std::function<void()> onCancel) {
    view->onCommit = std::move(onCommit);
    view->onCancel = std::move(onCancel);
}

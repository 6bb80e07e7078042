#pragma once

#include "Annotations/ViewFlip.h"
#include "Overlay/TextEditing.h"

#include <QPointer>

#include <functional>

class AnnotationTextView;
class QWidget;

/// The text editor as a control on the canvas. Ends with this object, after the event being handled.
class CanvasTextEditor final : public TextEditing {
public:
    CanvasTextEditor(QWidget& canvas, ViewFlip flip, const TextEditorSetup& setup);
    ~CanvasTextEditor() override;

    QString text() override;
    double fontSize() const override { return size; }
    void setFontSize(double points) override;
    void setColor(const QColor& color) override;
    Rect fittedFrame() override;
    void focus() override;
    bool hasFocus() const override;

    /// Set by the canvas right after construction.
    void setCallbacks(std::function<void()> onCommit, std::function<void()> onCancel);

private:
    QPointer<AnnotationTextView> view;
    ViewFlip flip;
    double size;
};

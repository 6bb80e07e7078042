#pragma once

#include "VistrelCore/Geometry.h"

#include <QTextEdit>

#include <functional>

class AnnotationTextDocumentLayout;

/// The text being typed on the canvas. Sizes itself: its box grows downwards and rightwards from the
/// anchor within the available size, and wraps as the finished layer will. Parent's y-down points.
class AnnotationTextView : public QTextEdit {
    Q_OBJECT
public:
    explicit AnnotationTextView(QWidget* parent = nullptr);

    /// The user wants to keep the text (Control or Super with Return or Enter).
    std::function<void()> onCommit;
    /// The user wants to drop the text (Escape).
    std::function<void()> onCancel;
    /// The box has been fitted to the text again.
    std::function<void()> onGrowth;

    /// Top-left corner of the box, in the parent's points; fractions are kept.
    void setAnchor(QPointF topLeft);
    QPointF anchor() const { return topLeft; }
    void setAvailableSize(Size size);
    Size availableSize() const { return available; }

    /// The font of the whole text, as `AnnotationTextLayout::font` makes it.
    void setTextFont(const QFont& font);
    QFont textFont() const;
    /// Colour of the text and of the caret.
    void setInkColor(const QColor& color);
    QColor inkColor() const { return ink; }
    /// Replaces the text; the caret goes to its end and nothing can be undone.
    void setString(const QString& string);
    /// The text exactly as typed, lines parted by line feeds.
    QString string() const;

    /// Fits the box to the text now.
    void fit();
    /// The box of the text in the parent's points, exact; the widget is a little larger.
    QRectF box() const;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QPointF topLeft;
    Size available{1, 1};
    Size fitted;
    QColor ink;
    AnnotationTextDocumentLayout* layout = nullptr;
    bool fitting = false;
};

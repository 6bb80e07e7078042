#pragma once

#include "VistrelCore/Geometry.h"

#include <QTextEdit>

#include <functional>

class AnnotationTextDocumentLayout;
class QTimer;

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

    /// Size of the text in points, fractions kept.
    void setFontSize(double points);
    double fontSize() const;
    /// Colour of the text and of the caret.
    void setInkColor(const QColor& color);
    QColor inkColor() const { return ink; }
    /// Replaces the text; the caret goes to its end and nothing can be undone.
    void setString(const QString& string);
    /// The text exactly as typed, paragraphs parted by line feeds.
    QString string() const;

    /// Fits the widget to the box of the text now.
    void fit();
    /// The box of the text in the parent's points, exact; the widget is a little larger.
    QRectF box() const;
    /// Where the caret is painted, in this widget's points.
    QRectF caretRect() const;

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent*) override {} // The box never depends on the widget.
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    void restartCaret();

    AnnotationTextDocumentLayout* textLayout;
    QTimer* blink;
    QPointF topLeft;
    Size available{1, 1};
    QColor ink = Qt::red;
    int composedCaret = 0;
    bool composing = false;
    bool caretHidden = false;
    bool caretOn = false;
};

#pragma once

#include "Desktop/PanelPlaces.h"
#include "Overlay/CanvasPainter.h"
#include "Overlay/OverlayEditor.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QWidget>

class AnnotationTextView;

/// One display in the rules: its document under the editing rules, and the two editors of text as values
/// that nobody sees. Points are the display's own, y down, unless they are called view points.
class RuledDisplay {
public:
    /// `rect` in device pixels of the root.
    RuledDisplay(QRect rect, double scale);

    void reset(const QImage& picture);
    OverlayDocument& document() { return editor.session.document; }
    const OverlayDocument& document() const { return editor.session.document; }
    bool showsPanels() const;
    PanelPlaces places() const;
    bool isEnabled(const PanelControl& control) const;
    /// The layer in a row of the list, newest first.
    QUuid layerInRow(int row) const;

    Size size() const { return {rect.width() / scale, rect.height() / scale}; }
    QPointF toPoints(QPoint onRoot) const { return QPointF(onRoot - rect.topLeft()) / scale; }
    QPoint toRoot(QPointF points) const { return rect.topLeft() + (points * scale).toPoint(); }
    QRect toRoot(const QRectF& points) const;
    Point viewPoint(QPoint onRoot) const;

    /// Where the editor of text stands; null while nothing is typed.
    QRectF textArea() const;
    /// What the keyboard does, as long as it is this display's.
    void key(QKeyEvent& event);
    void beginField();
    /// The canvas or the text takes the keyboard from the size field, which takes over what was typed.
    void leaveField();
    /// What the display looks like, panels left out; device pixels.
    QImage picture();
    /// Where letters stand in it, which look a little different in a program with scaled displays.
    std::vector<QRect> letters() const;

    const QRect rect;
    const double scale;
    OverlayEditor editor;
    bool fieldHasFocus = false;
    bool textHasFocus = false;
    AnnotationTextView* textView = nullptr;
    QWidget paper;

private:
    void showSize();
    void commitField();
    bool isFieldPending() const { return field.isModified() || field.text() != shownSize; }

    BadgeText badgeText;
    QLineEdit field;
    QString shownSize;

    friend class Rules;
};

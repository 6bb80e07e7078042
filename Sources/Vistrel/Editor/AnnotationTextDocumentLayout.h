#pragma once

#include "VistrelCore/Geometry.h"

#include <QAbstractTextDocumentLayout>

/// Lays a document out as `AnnotationTextLayout` lays out a text layer, doing again only the paragraphs
/// that an edit has changed. Its own coordinates are units of the whole-pixel font, as a text cursor
/// expects; scale and origin are applied on the way to the widget and back.
class AnnotationTextDocumentLayout : public QAbstractTextDocumentLayout {
    Q_OBJECT
public:
    explicit AnnotationTextDocumentLayout(QTextDocument& document);

    /// Size of the font in points, fractions kept.
    void setFontSize(double points);
    double fontSize() const { return points; }
    /// What the box may grow to, in points.
    void setAvailable(Size size);
    /// The box around the text, in points; what `AnnotationTextLayout::size` says of the same text.
    Size box() const { return fitted; }
    /// Where the text's top-left corner stands in the widget, and how far that is above the box.
    void setOrigin(QPointF topLeft, double aboveTheBox);
    /// How far the text must rise so that the caret's line ends within the box.
    double riseFor(int position, int composed) const;
    /// Where the caret stands in the widget, `composed` units into text being composed.
    QRectF caretRect(int position, int composed) const;

    /// Paints the lines that end within the box, as the finished layer will show them. Only the palette's
    /// text colour and the selections of the context count.
    void draw(QPainter* painter, const PaintContext& context) override;
    int hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const override;
    int pageCount() const override { return 1; }
    /// Empty, so that nothing ever scrolls.
    QSizeF documentSize() const override { return {}; }
    QRectF frameBoundingRect(QTextFrame* frame) const override;
    QRectF blockBoundingRect(const QTextBlock& block) const override;

protected:
    void documentChanged(int position, int removed, int added) override;

private:
    void layOut(const QTextBlock& block, double width) const;
    void measure(const QTextBlock& block) const;
    void arrange();
    double widthLimit() const { return std::max(available.width, 1.0); }

    double points = 12;
    double factor = 1;
    Size available{1, 1};
    Size fitted{1, 1};
    QPointF origin;
    double rise = 0;
};

#include "Editor/AnnotationTextDocumentLayout.h"

#include "Annotations/AnnotationTextLayout.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

namespace {

constexpr double unlimitedWidth = 1e6;
constexpr QChar lineSeparator(0x2028);

/// A paragraph's measurements, in font units.
struct Paragraph : QTextBlockUserData {
    /// Width on a single line; unlimited when it does not fit into the widest box.
    double natural = 0;
    /// The width that its lines are broken for.
    double brokenFor = 0;
    double y = 0;
    double height = 0;
    bool rightToLeft = false;
};

Paragraph& paragraphOf(const QTextBlock& block) {
    auto* data = static_cast<Paragraph*>(block.userData());
    if (!data) {
        data = new Paragraph;
        QTextBlock(block).setUserData(data);
    }
    return *data;
}

double widthOfLines(const QTextLayout& layout) {
    double widest = 0;
    for (int i = 0; i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        widest = std::max({widest, line.naturalTextWidth(), line.horizontalAdvance()});
    }
    return widest;
}

} // namespace

AnnotationTextDocumentLayout::AnnotationTextDocumentLayout(QTextDocument& document)
    : QAbstractTextDocumentLayout(&document) {}

void AnnotationTextDocumentLayout::setFontSize(double size) {
    points = size;
    factor = AnnotationTextLayout::scale(size);
    const QFont font = AnnotationTextLayout::font(size);
    if (document()->defaultFont() != font)
        document()->setDefaultFont(font); // Lays everything out again.
    else
        documentChanged(0, 0, document()->characterCount());
}

void AnnotationTextDocumentLayout::setAvailable(Size size) {
    if (available == size)
        return;
    available = size;
    documentChanged(0, 0, document()->characterCount());
}

void AnnotationTextDocumentLayout::documentChanged(int position, int, int added) {
    const int end = position + added;
    for (QTextBlock block = document()->findBlock(position); block.isValid() && block.position() <= end;
         block = block.next())
        measure(block);
    arrange();
}

void AnnotationTextDocumentLayout::layOut(const QTextBlock& block, double width) const {
    Paragraph& paragraph = paragraphOf(block);
    QTextLayout& layout = *block.layout();
    layout.setFont(document()->defaultFont());
    layout.setText(block.text()); // A block's layout does not know its text until asked to paint it.
    paragraph.rightToLeft = block.text().isRightToLeft();
    paragraph.height = AnnotationTextLayout::layOut(layout, width);
    paragraph.brokenFor = width;
}

/// Breaks the lines for the widest box; what then stands on a single line needs no more room than that.
void AnnotationTextDocumentLayout::measure(const QTextBlock& block) const {
    Paragraph& paragraph = paragraphOf(block);
    layOut(block, widthLimit() / factor);
    const QTextLayout& layout = *block.layout();
    const QString text = block.text();
    if (layout.lineCount() > 1 && !text.contains(lineSeparator)) {
        paragraph.natural = unlimitedWidth;
    } else if (text.contains(lineSeparator) || (!text.isEmpty() && text.back().isSpace())) {
        // Spaces that hang over the edge have a width only where there is no edge.
        QTextLayout unbroken(text, document()->defaultFont());
        AnnotationTextLayout::layOut(unbroken, unlimitedWidth);
        paragraph.natural = widthOfLines(unbroken);
    } else {
        paragraph.natural = widthOfLines(layout);
    }
}

void AnnotationTextDocumentLayout::arrange() {
    double widest = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
        widest = std::max(widest, paragraphOf(block).natural);
    const double width = std::min(std::max(std::ceil(widest * factor) + 1, 2.0), widthLimit());
    double y = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        Paragraph& paragraph = paragraphOf(block);
        const double breakAt = width / factor;
        const bool oneLine = paragraph.natural <= std::min(breakAt, paragraph.brokenFor);
        if (paragraph.brokenFor != breakAt && (!oneLine || paragraph.rightToLeft))
            layOut(block, breakAt);
        paragraph.y = y;
        y += paragraph.height;
    }
    const double lineHeight = QFontMetricsF(document()->defaultFont()).lineSpacing();
    const double height = std::ceil(std::max(lineHeight, y) * factor);
    fitted = {width, std::min(height, std::max(available.height, 1.0))};
}

void AnnotationTextDocumentLayout::setOrigin(QPointF topLeft, double aboveTheBox) {
    origin = topLeft;
    rise = aboveTheBox;
}

double AnnotationTextDocumentLayout::riseFor(int position, int composed) const {
    return std::max(caretRect(position, composed).bottom() - origin.y() - fitted.height, 0.0);
}

QRectF AnnotationTextDocumentLayout::caretRect(int position, int composed) const {
    constexpr double pointsPerCaretPoint = 18;
    const QTextBlock block = document()->findBlock(position);
    if (!block.isValid())
        return {};
    const QTextLayout& layout = *block.layout();
    const int inBlock = position - block.position() + composed;
    const QTextLine line = layout.lineForTextPosition(inBlock);
    if (!line.isValid())
        return {};
    const double top = paragraphOf(block).y + line.y();
    const double thickness = std::max(1.0, std::round(points / pointsPerCaretPoint));
    const QPointF corner = origin + QPointF(line.cursorToX(inBlock), top) * factor;
    return {corner.x() - thickness / 2, corner.y(), thickness, line.height() * factor};
}

void AnnotationTextDocumentLayout::draw(QPainter* painter, const PaintContext& context) {
    constexpr double tolerance = 0.01;
    painter->save();
    painter->translate(origin);
    painter->scale(factor, factor);
    painter->setPen(context.palette.color(QPalette::Text));
    const double bottom = (fitted.height + rise + tolerance) / factor;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const Paragraph& paragraph = paragraphOf(block);
        if (paragraph.y > bottom)
            break;
        const QTextLayout& layout = *block.layout();
        // The first line that is cut off, and all below it, stay out of sight.
        double visible = -1;
        for (int i = 0; i < layout.lineCount(); ++i) {
            const QTextLine line = layout.lineAt(i);
            const double lineBottom = paragraph.y + line.y() + line.height();
            if (lineBottom > bottom && paragraph.y + line.y() > 0)
                break;
            visible = line.y() + line.height();
        }
        if (visible < 0)
            break;
        QList<QTextLayout::FormatRange> selections;
        for (const Selection& selection : context.selections) {
            QTextLayout::FormatRange range;
            range.start = std::max(selection.cursor.selectionStart() - block.position(), 0);
            range.length =
                std::min(selection.cursor.selectionEnd() - block.position(), block.length()) - range.start;
            range.format = selection.format;
            if (range.length > 0)
                selections.append(range);
        }
        // Lines are left out by where they begin.
        const QRectF clip(-unlimitedWidth, paragraph.y, 2 * unlimitedWidth, visible - 0.5);
        layout.draw(painter, {0, paragraph.y}, selections, clip);
    }
    painter->restore();
}

int AnnotationTextDocumentLayout::hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const {
    const QPointF inText = (point - origin) / factor;
    QTextBlock hit = document()->begin();
    for (QTextBlock block = hit; block.isValid() && paragraphOf(block).y <= inText.y(); block = block.next())
        hit = block;
    const Paragraph& paragraph = paragraphOf(hit);
    const QTextLayout& layout = *hit.layout();
    if (accuracy == Qt::ExactHit &&
        !QRectF(0, 0, fitted.width / factor, paragraph.y + paragraph.height).contains(inText))
        return -1;
    int index = 0;
    while (index + 1 < layout.lineCount() && paragraph.y + layout.lineAt(index + 1).y() <= inText.y())
        ++index;
    if (index >= layout.lineCount())
        return hit.position();
    return hit.position() + layout.lineAt(index).xToCursor(inText.x());
}

QRectF AnnotationTextDocumentLayout::frameBoundingRect(QTextFrame*) const {
    return {0, 0, fitted.width / factor, fitted.height / factor};
}

QRectF AnnotationTextDocumentLayout::blockBoundingRect(const QTextBlock& block) const {
    if (!block.isValid())
        return {};
    const Paragraph& paragraph = paragraphOf(block);
    return {0, paragraph.y, fitted.width / factor, paragraph.height};
}

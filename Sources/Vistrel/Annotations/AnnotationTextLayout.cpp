#include "Annotations/AnnotationTextLayout.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

namespace {

/// Wider than any line, and still inside the layout's fixed-point range.
constexpr double unlimitedWidth = 1e6;

double widthOf(const QString& line, const QFont& font) {
    QTextLayout layout(line, font);
    AnnotationTextLayout::layOut(layout, unlimitedWidth);
    double widest = 0;
    for (int i = 0; i < layout.lineCount(); ++i) {
        // Spaces at the end hang over without a place of their own, but they have been typed.
        const QTextLine part = layout.lineAt(i);
        widest = std::max({widest, part.naturalTextWidth(), part.horizontalAdvance()});
    }
    return widest;
}

} // namespace

QFont AnnotationTextLayout::font(double size) {
    constexpr double largest = 2000;
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(std::max(qRound(std::min(size, largest)), 1));
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

double AnnotationTextLayout::scale(double size) {
    constexpr double smallest = 0.01;
    return std::max(size, smallest) / font(size).pixelSize();
}

double AnnotationTextLayout::layOut(QTextLayout& paragraph, double width) {
    constexpr int digitsPerTab = 4;
    const bool rightToLeft = paragraph.text().isRightToLeft();
    QTextOption option(rightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    option.setTextDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTabStopDistance(digitsPerTab * QFontMetricsF(paragraph.font()).horizontalAdvance(u'0'));
    paragraph.setTextOption(option);
    double y = 0;
    paragraph.beginLayout();
    for (QTextLine line = paragraph.createLine(); line.isValid(); line = paragraph.createLine()) {
        line.setLeadingIncluded(true);
        line.setLineWidth(width);
        line.setPosition({0, y});
        y += line.height();
    }
    paragraph.endLayout();
    return y;
}

Size AnnotationTextLayout::size(const QString& text, double fontSize, Size available) {
    const QFont wholeSize = font(fontSize);
    const double factor = scale(fontSize);
    const double widthLimit = std::max(available.width, 1.0);
    const double heightLimit = std::max(available.height, 1.0);
    const QStringList lines = text.split(u'\n');
    // A long text has more lines than are ever seen: measuring ends where nothing can change any more.
    double widest = 0;
    for (const QString& line : lines) {
        widest = std::max(widest, widthOf(line, wholeSize));
        if (widest * factor + 1 >= widthLimit)
            break;
    }
    const double width = std::min(std::max(std::ceil(widest * factor) + 1, 2.0), widthLimit);
    double height = 0;
    for (const QString& line : lines) {
        QTextLayout paragraph(line, wholeSize);
        height += layOut(paragraph, width / factor);
        if (height * factor >= heightLimit)
            break;
    }
    return {width, std::min(std::ceil(height * factor), heightLimit)};
}

void AnnotationTextLayout::draw(const EditorAnnotation& annotation, QPainter& painter) {
    // A line that ends with the box to within rounding still fits.
    constexpr double tolerance = 0.01;
    const Rect box = annotation.geometryBounds();
    const QFont wholeSize = font(annotation.width);
    const double factor = scale(annotation.width);
    painter.save();
    painter.translate(box.minX(), box.maxY());
    painter.scale(factor, -factor);
    painter.setPen(annotation.color);
    double top = 0;
    for (const QString& text : annotation.text.split(u'\n')) {
        QTextLayout paragraph(text, wholeSize);
        const double height = layOut(paragraph, box.width / factor);
        for (int i = 0; i < paragraph.lineCount(); ++i) {
            const QTextLine line = paragraph.lineAt(i);
            const double bottom = top + line.y() + line.height();
            if (top + line.y() > 0 && bottom * factor > box.height + tolerance)
                break;
            line.draw(&painter, {0, top});
        }
        top += height;
        if (top * factor > box.height + tolerance)
            break;
    }
    painter.restore();
}

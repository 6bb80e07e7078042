#include "Overlay/BadgeText.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>

namespace {
constexpr int fontSize = 13;
}

BadgeText::BadgeText() : font(QFontDatabase::systemFont(QFontDatabase::GeneralFont)) {
    font.setPixelSize(fontSize);
    font.setWeight(QFont::Medium);
    const QFontMetricsF metrics(font);
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        digitWidth = std::max(digitWidth, metrics.horizontalAdvance(QChar(digit)));
}

double BadgeText::advance(QChar character) const {
    return character.isDigit() ? digitWidth : QFontMetricsF(font).horizontalAdvance(character);
}

Size BadgeText::size(const QString& text) const {
    double width = 0;
    for (const QChar character : text)
        width += advance(character);
    return {width, QFontMetricsF(font).height()};
}

void BadgeText::draw(QPainter& painter, QPointF topLeft, const QString& text) const {
    const QFontMetricsF metrics(font);
    painter.setFont(font);
    double x = topLeft.x();
    const double baseline = topLeft.y() + metrics.ascent();
    QString run;
    double runStart = x;
    const auto flush = [&] {
        if (!run.isEmpty())
            painter.drawText(QPointF(runStart, baseline), run);
        run.clear();
    };
    // Only digits are placed one by one; words keep their kerning.
    for (const QChar character : text) {
        if (character.isDigit()) {
            flush();
            const double slack = digitWidth - metrics.horizontalAdvance(character);
            painter.drawText(QPointF(x + slack / 2, baseline), QString(character));
            x += digitWidth;
            continue;
        }
        if (run.isEmpty())
            runStart = x;
        run += character;
        x += metrics.horizontalAdvance(character);
    }
    flush();
}

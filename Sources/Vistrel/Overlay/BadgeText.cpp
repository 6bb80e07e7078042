#include "Overlay/BadgeText.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>

namespace {
constexpr int fontSize = 13;
}

void BadgeText::loadSystemFonts() {
    static_cast<void>(QFontDatabase::hasFamily(QFont().family()));
}

const BadgeText::Face& BadgeText::face() const {
    if (found)
        return *found;
    found = Face{QFontDatabase::systemFont(QFontDatabase::GeneralFont), 0};
    found->font.setPixelSize(fontSize);
    found->font.setWeight(QFont::Medium);
    const QFontMetricsF metrics(found->font);
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        found->digitWidth = std::max(found->digitWidth, metrics.horizontalAdvance(QChar(digit)));
    return *found;
}

double BadgeText::Face::advance(QChar character) const {
    return character.isDigit() ? digitWidth : QFontMetricsF(font).horizontalAdvance(character);
}

Size BadgeText::size(const QString& text) const {
    double width = 0;
    for (const QChar character : text)
        width += face().advance(character);
    return {width, QFontMetricsF(face().font).height()};
}

void BadgeText::draw(QPainter& painter, QPointF topLeft, const QString& text) const {
    const auto& [font, digitWidth] = face();
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

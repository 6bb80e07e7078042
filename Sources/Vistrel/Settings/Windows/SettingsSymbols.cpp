#include "Settings/Windows/SettingsSymbols.h"

#include "Settings/Windows/PageStyle.h"

#include <QPainter>
#include <QPainterPath>

namespace SettingsSymbols {
namespace {

constexpr double square = 20;
constexpr double stroke = 1.5;

void paintKeyboard(QPainter& painter, const QColor& color) {
    painter.drawRoundedRect(QRectF(1.5, 4.5, 17, 11), 2, 2);
    for (const double y : {7.75, 10.25}) {
        for (const double x : {4.5, 7.25, 10.0, 12.75, 15.5})
            painter.fillRect(QRectF(x - 0.7, y - 0.7, 1.4, 1.4), color);
    }
    painter.drawLine(QPointF(6.5, 13), QPointF(13.5, 13));
}

void paintPalette(QPainter& painter, const QColor& color) {
    QPainterPath outline(QPointF(10, 2));
    outline.cubicTo(5.3, 2, 1.75, 5.5, 1.75, 10);
    outline.cubicTo(1.75, 14.5, 5.4, 18, 10, 18);
    outline.cubicTo(11.6, 18, 12.3, 16.9, 11.9, 15.6);
    outline.cubicTo(11.4, 13.9, 12.3, 12.9, 14, 12.9);
    outline.lineTo(15.4, 12.9);
    outline.cubicTo(17.3, 12.9, 18.25, 11.4, 18.25, 9.6);
    outline.cubicTo(18.25, 5.2, 14.6, 2, 10, 2);
    painter.drawPath(outline);
    painter.setBrush(color);
    painter.setPen(Qt::NoPen);
    for (const QPointF dot : {QPointF(5.6, 10.3), QPointF(7.4, 6.4), QPointF(11.6, 5.5), QPointF(14.9, 8.3)})
        painter.drawEllipse(dot, 1.2, 1.2);
}

void paintCycle(QPainter& painter, const QColor& color) {
    constexpr int sixteenth = 16;
    const QRectF circle(3.25, 3.25, 13.5, 13.5);
    painter.drawArc(circle, 20 * sixteenth, 125 * sixteenth);
    painter.drawArc(circle, 200 * sixteenth, 125 * sixteenth);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(QPolygonF{{17.9, 4.6}, {17.4, 9.6}, {13.1, 7.0}});
    painter.drawPolygon(QPolygonF{{2.1, 15.4}, {2.6, 10.4}, {6.9, 13.0}});
}

void paintLadybug(QPainter& painter, const QColor& color) {
    painter.drawEllipse(QRectF(4.75, 6, 10.5, 12));
    painter.drawLine(QPointF(10, 8.5), QPointF(10, 18));
    QPainterPath head(QPointF(6.6, 7.9));
    head.cubicTo(6.6, 2.6, 13.4, 2.6, 13.4, 7.9);
    painter.drawPath(head);
    painter.drawLine(QPointF(7.6, 4.4), QPointF(6.2, 2.2));
    painter.drawLine(QPointF(12.4, 4.4), QPointF(13.8, 2.2));
    for (const double y : {9.2, 12.2, 15.2}) {
        const double reach = y == 12.2 ? 2.6 : 2.0;
        const double slope = (y - 12.2) * 0.35;
        painter.drawLine(QPointF(4.9, y), QPointF(4.9 - reach, y + slope));
        painter.drawLine(QPointF(15.1, y), QPointF(15.1 + reach, y + slope));
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    for (const QPointF dot : {QPointF(7.6, 11), QPointF(12.4, 11), QPointF(7.8, 14.6), QPointF(12.2, 14.6)})
        painter.drawEllipse(dot, 0.95, 0.95);
}

void paintCheckmark(QPainter& painter, const QColor& color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QPointF(10, 10), 8.5, 8.5);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{{6.2, 10.3}, {8.9, 13}, {13.9, 7.4}});
}

void paintWarning(QPainter& painter, const QColor& color) {
    painter.setPen(QPen(color, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(color);
    painter.drawPolygon(QPolygonF{{10, 3.2}, {17.6, 16.4}, {2.4, 16.4}});
    painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(10, 7.6), QPointF(10, 11.6));
    painter.drawPoint(QPointF(10, 14.7));
}

void paintShield(QPainter& painter, const QColor&) {
    QPainterPath shield(QPointF(10, 1.8));
    shield.cubicTo(12.2, 3.6, 14.6, 4.4, 17, 4.5);
    shield.cubicTo(17.3, 10.6, 15.2, 15.6, 10, 18.2);
    shield.cubicTo(4.8, 15.6, 2.7, 10.6, 3, 4.5);
    shield.cubicTo(5.4, 4.4, 7.8, 3.6, 10, 1.8);
    painter.drawPath(shield);
    painter.drawPolyline(QPolygonF{{6.8, 10}, {9.2, 12.4}, {13.4, 7.6}});
}

} // namespace

void paint(QPainter& painter, Symbol symbol, const QRectF& target, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(target.topLeft());
    painter.scale(target.width() / square, target.height() / square);
    painter.setPen(QPen(color, stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    switch (symbol) {
    case Symbol::keyboard:
        paintKeyboard(painter, color);
        break;
    case Symbol::palette:
        paintPalette(painter, color);
        break;
    case Symbol::cycle:
        paintCycle(painter, color);
        break;
    case Symbol::ladybug:
        paintLadybug(painter, color);
        break;
    case Symbol::checkmark:
        paintCheckmark(painter, color);
        break;
    case Symbol::warning:
        paintWarning(painter, color);
        break;
    case Symbol::shield:
        paintShield(painter, color);
        break;
    }
    painter.restore();
}

QPixmap pixmap(Symbol symbol, const QColor& color, int size, double devicePixelRatio) {
    QPixmap pixmap(QSize(size, size) * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(painter, symbol, QRectF(0, 0, size, size), color);
    return pixmap;
}

} // namespace SettingsSymbols

SymbolView::SymbolView(SettingsSymbols::Symbol shown, int size, const QString& description, QWidget* parent)
    : QWidget(parent), symbol(shown) {
    setFixedSize(size, size);
    setAccessibleName(description);
}

void SymbolView::paintEvent(QPaintEvent*) {
    using SettingsSymbols::Symbol;
    const bool dark = PageStyle::isDark(palette());
    QColor color = PageStyle::secondaryColor(palette());
    if (symbol == Symbol::checkmark)
        color = dark ? QColor(0x2f, 0x9e, 0x5b) : QColor(0x1f, 0x8a, 0x4c);
    else if (symbol == Symbol::warning)
        color = dark ? QColor(0xd0, 0x8a, 0x1c) : QColor(0xc2, 0x73, 0x0b);
    QPainter painter(this);
    SettingsSymbols::paint(painter, symbol, rect(), color);
}

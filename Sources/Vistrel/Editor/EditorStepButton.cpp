#include "Editor/EditorStepButton.h"

#include "Editor/DevicePixels.h"
#include "Editor/EditorColors.h"

#include <QPainter>
#include <QPainterPath>

namespace {
constexpr double glyphLine = 2;
}

EditorStepButton::EditorStepButton(bool increases, QWidget* parent)
    : EditorButton(parent), increasing(increases) {
    setFiresOnPress(true);
    // The minus sign, not the hyphen.
    setText(increases ? QStringLiteral("+") : QStringLiteral("−"));
    setAccessibleName(increases ? QStringLiteral("Increase size") : QStringLiteral("Decrease size"));
    setObjectName(increases ? QStringLiteral("increaseSize") : QStringLiteral("decreaseSize"));
}

double EditorStepButton::glyphLength(QSizeF size) {
    return std::min({14.0, size.height() - 4, size.width() - 4});
}

void EditorStepButton::paintContent(QPainter& painter) {
    const double length = glyphLength(size());
    if (length <= 0)
        return;
    QColor color = EditorColors::ink();
    color.setAlphaF(isEnabled() ? 1.0F : 0.4F);
    painter.setPen(QPen(color, glyphLine, Qt::SolidLine, Qt::RoundCap));
    // The bars' edges, not their middles, lie on whole device pixels.
    const QPointF half(glyphLine / 2, glyphLine / 2);
    const QPointF center = DevicePixels::aligned(painter, QRectF(rect()).center() - half) + half;
    // One path, so that the bars do not darken each other where they cross.
    QPainterPath glyph;
    const double reach = std::max((length - glyphLine) / 2, 0.1); // The round caps take the rest.
    glyph.moveTo(center - QPointF(reach, 0));
    glyph.lineTo(center + QPointF(reach, 0));
    if (increasing) {
        glyph.moveTo(center - QPointF(0, reach));
        glyph.lineTo(center + QPointF(0, reach));
    }
    painter.drawPath(glyph);
}

#include "Editor/LayerScrollBar.h"

#include "Editor/EditorColors.h"

#include <QMouseEvent>
#include <QPainter>

LayerScrollBar::LayerScrollBar(QWidget* parent) : QScrollBar(Qt::Vertical, parent) {
    setContextMenuPolicy(Qt::PreventContextMenu);
    setAccessibleName(QStringLiteral("Scroll layers"));
    setObjectName(QStringLiteral("layerScrollBar"));
}

void LayerScrollBar::setThickness(int points) {
    if (thickness == points)
        return;
    thickness = points;
    updateGeometry();
}

QSize LayerScrollBar::sizeHint() const {
    return {thickness, 2 * thickness};
}

QRectF LayerScrollBar::thumb() const {
    const double range = maximum() - minimum();
    if (range <= 0)
        return {};
    const double shortest = 2.0 * thickness;
    const double length = std::clamp(height() * pageStep() / (range + pageStep()), shortest,
                                     std::max(double(height()), shortest));
    const double top = (height() - length) * (value() - minimum()) / range;
    const double side = thickness * 0.25;
    return {side, top, thickness - 2 * side, length};
}

void LayerScrollBar::paintEvent(QPaintEvent*) {
    const QRectF handle = thumb();
    if (handle.isEmpty())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor color = EditorColors::ink();
    color.setAlphaF(grabOffset || underMouse() ? 0.6F : 0.35F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(handle, handle.width() / 2, handle.width() / 2);
}

void LayerScrollBar::mousePressEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    const QRectF handle = thumb();
    const double y = event->position().y();
    if (y < handle.top())
        triggerAction(SliderPageStepSub);
    else if (y > handle.bottom())
        triggerAction(SliderPageStepAdd);
    else
        grabOffset = y - handle.top();
    update();
}

void LayerScrollBar::mouseMoveEvent(QMouseEvent* event) {
    event->accept();
    const double free = height() - thumb().height();
    if (!grabOffset || free <= 0)
        return;
    const double share = (event->position().y() - *grabOffset) / free;
    setValue(minimum() + qRound(share * (maximum() - minimum())));
}

void LayerScrollBar::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    grabOffset.reset();
    update();
}

#include "Editor/EditorPanel.h"

#include "Editor/DevicePixels.h"
#include "Editor/EditorAccessibility.h"
#include "Editor/EditorColors.h"

#include <QEvent>

namespace {

QPainterPath united(const std::vector<QRectF>& rects, double radius) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const QRectF& rect : rects)
        path.addRoundedRect(rect, radius, radius);
    return path;
}

} // namespace

EditorPanel::EditorPanel(QWidget* parent) : QWidget(parent) {
    EditorAccessibility::install();
    setCursor(Qt::ArrowCursor);
    setPalette(EditorColors::palette());
}

void EditorPanel::setShape(std::vector<QRectF> rects, double cornerRadius) {
    if (pieces == rects && radius == cornerRadius)
        return;
    pieces = std::move(rects);
    radius = cornerRadius;
    // What the shape leaves out of the rectangle is the canvas's, pointer and all.
    const QRegion covered = region();
    setMask(covered == QRegion(rect()) ? QRegion() : covered);
    update();
}

QRegion EditorPanel::region() const {
    QRegion result;
    for (const QRectF& piece : pieces)
        result += piece.toAlignedRect();
    return result & rect();
}

bool EditorPanel::isInside(QPointF position) const {
    return united(pieces, radius).contains(position);
}

bool EditorPanel::swallow(QEvent& event) {
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
        event.accept();
        return true;
    default:
        return false;
    }
}

bool EditorPanel::event(QEvent* event) {
    return swallow(*event) || QWidget::event(event);
}

void EditorPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    std::vector<QRectF> sharp;
    for (const QRectF& piece : pieces)
        sharp.push_back(DevicePixels::aligned(painter, piece));
    painter.fillPath(united(sharp, radius), EditorColors::background());
}

#include "Editor/LayerIcon.h"

#include "Editor/DevicePixels.h"
#include "Editor/EditorColors.h"
#include "Editor/EditorHint.h"
#include "Editor/EditorIcons.h"
#include "Editor/LayerRowView.h"
#include "Editor/LayerTableView.h"

#include <QMouseEvent>
#include <QPainter>

LayerIcon::LayerIcon(LayerTableView& owningTable, LayerRowView& owningRow)
    : QWidget(&owningRow), table(owningTable), row(owningRow) {
    setObjectName(QStringLiteral("layerIcon"));
    setCursor(Qt::OpenHandCursor);
    new EditorHint(*this);
}

void LayerIcon::setTool(AnnotationTool shown) {
    tool = shown;
    const QString text = QStringLiteral("Drag to reorder %1 layer").arg(AnnotationTools::title(tool));
    setToolTip(text);
    setAccessibleName(text);
    update();
}

void LayerIcon::setMagnification(double magnification) {
    scale = magnification;
    update();
}

void LayerIcon::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const auto icon = EditorIcons::image(AnnotationTools::name(tool), AnnotationTools::symbol(tool),
                                         iconSize * scale, DevicePixels::ratio(painter));
    if (icon)
        icon->paint(painter, QRectF(rect()).center(), EditorColors::ink());
}

void LayerIcon::mousePressEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    start = event->globalPosition();
    pressed = row.row().id;
    dragging = false;
}

void LayerIcon::mouseMoveEvent(QMouseEvent* event) {
    event->accept();
    if (pressed.isNull())
        return;
    const QPointF way = event->globalPosition() - start;
    if (!dragging && std::hypot(way.x(), way.y()) >= dragDistance) {
        dragging = true;
        setCursor(Qt::ClosedHandCursor);
    }
    if (dragging)
        table.previewMove(table.viewport()->mapFromGlobal(event->globalPosition()));
}

void LayerIcon::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != Qt::LeftButton || pressed.isNull())
        return;
    const QUuid layer = pressed;
    const bool dragged = dragging;
    endGesture();
    if (dragged)
        table.finishMove(layer, table.viewport()->mapFromGlobal(event->globalPosition()));
    else
        table.choose(layer);
}

void LayerIcon::hideEvent(QHideEvent*) {
    if (dragging)
        table.cancelMove();
    endGesture();
}

void LayerIcon::endGesture() {
    pressed = QUuid();
    dragging = false;
    setCursor(Qt::OpenHandCursor);
}

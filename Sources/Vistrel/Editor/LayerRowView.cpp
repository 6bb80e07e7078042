#include "Editor/LayerRowView.h"

#include "Editor/DevicePixels.h"
#include "Editor/EditorHint.h"
#include "Editor/LayerIcon.h"
#include "Editor/LayerLabel.h"
#include "Editor/LayerTableView.h"
#include "Editor/LayerTrashButton.h"

#include <QMouseEvent>
#include <QPainter>

LayerRowView::LayerRowView(LayerTableView& owningTable, QWidget* viewport)
    : QWidget(viewport),
      table(owningTable),
      iconView(new LayerIcon(owningTable, *this)),
      labelView(new LayerLabel(this)),
      trashButton(new LayerTrashButton(this)) {
    setObjectName(QStringLiteral("layerRow"));
    trashButton->onAction = [this] { remove(); };
}

void LayerRowView::show(const LayerRow& row, int index) {
    position = index;
    if (!shownBefore || content != row) {
        shownBefore = true;
        EditorHint::dismissAll(*this);
        content = row;
        const QString text = LayerListRules::label(row);
        const QString title = AnnotationTools::title(row.tool);
        setAccessibleName(text);
        iconView->setTool(row.tool);
        labelView->setText(text);
        trashButton->setAnnotationID(row.id);
        trashButton->setToolTip(QStringLiteral("Delete ") + title);
        trashButton->setAccessibleName(QStringLiteral("Delete ") + title);
    }
    setVisible(true);
}

void LayerRowView::clear() {
    hide();
    content = {};
    shownBefore = false;
    setAccessibleName({});
    labelView->setText({});
    trashButton->setAnnotationID({});
}

void LayerRowView::setMagnification(double magnification) {
    if (scale == magnification && shownBefore)
        return;
    scale = magnification;
    iconView->setMagnification(scale);
    labelView->setMagnification(scale);
    trashButton->setMagnification(scale);
    trashButton->setHoverRadius(5 * scale);
    layoutParts();
}

bool LayerRowView::isChosen() const {
    return table.selectedRow() == position;
}

void LayerRowView::choose() {
    table.choose(content.id);
}

void LayerRowView::remove() {
    if (!trashButton->annotationID().isNull() && table.onDelete)
        table.onDelete(trashButton->annotationID());
}

void LayerRowView::setFocusRing(bool shown) {
    if (ring == shown)
        return;
    ring = shown;
    update();
}

void LayerRowView::layoutParts() {
    // Stated from the bottom, but every part stands in the middle of the row's 30 points.
    const double designWidth = width() / scale;
    const auto place = [this](QWidget& part, const QRectF& design) {
        part.setGeometry(DevicePixels::roundedEdges(
            {design.x() * scale, design.y() * scale, design.width() * scale, design.height() * scale}));
    };
    place(*iconView, {4, 5, LayerIcon::iconSize, LayerIcon::iconSize});
    place(*labelView, {26, 6, std::max(designWidth - 52, 0.0), 18});
    place(*trashButton, {designWidth - 24, 3, 24, 24});
}

void LayerRowView::resizeEvent(QResizeEvent*) {
    layoutParts();
}

bool LayerRowView::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
            choose();
        [[fallthrough]];
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        event->accept(); // A row is a control: the canvas below gets none of its gestures.
        return true;
    default:
        return QWidget::event(event);
    }
}

void LayerRowView::paintEvent(QPaintEvent*) {
    if (!ring)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    EditorButton::paintFocusRing(painter, rect(), 6 * scale);
}

#include "Editor/LayerRowView.h"
#include "Editor/LayerTableView.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTimer>

// The two ways to move a layer in the list: dragging its icon, and the keyboard.

void LayerTableView::setInsertion(std::optional<int> row) {
    pendingInsertion = row;
    if (!row)
        scroller->stop();
    updateIndicator();
}

void LayerTableView::updateIndicator() {
    indicator->setVisible(pendingInsertion.has_value());
    if (!pendingInsertion)
        return;
    constexpr int thickness = 6;
    const int line = qRound(*pendingInsertion * pitch()) - verticalScrollBar()->value();
    const int top = std::clamp(line - thickness / 2, -thickness / 2 + 1,
                               std::max(viewport()->height() - thickness / 2 - 1, 0));
    indicator->setGeometry(0, top, viewport()->width(), thickness);
    indicator->raise();
}

void LayerTableView::previewMove(QPointF position) {
    dragPosition = position;
    if (!scroller->isActive())
        scroller->start();
    followPointer();
}

void LayerTableView::followPointer() {
    QScrollBar& vertical = *verticalScrollBar();
    vertical.setValue(vertical.value() +
                      qRound(LayerListRules::autoScroll(dragPosition.y(), viewport()->height())));
    setInsertion(
        LayerListRules::insertion(dragPosition.y() + vertical.value(), pitch(), int(content.size())));
}

void LayerTableView::finishMove(const QUuid& layer, QPointF position) {
    const std::optional<int> insertion = pendingInsertion;
    setInsertion(std::nullopt);
    layoutRows();
    const QPointF inList = viewport()->mapTo(this, position);
    const std::optional<int> row = rowOf(layer);
    if (insertion && row && QRectF(rect()).contains(inList))
        moveLayer(*row, *insertion);
}

void LayerTableView::moveLayer(int row, int insertion) {
    const auto index = LayerListRules::annotationIndex(row, insertion, int(content.size()));
    if (index && onReorder)
        onReorder(content[std::size_t(row)].id, *index);
}

void LayerTableView::moveKeyboardRow(int row) {
    if (content.empty())
        return;
    keyboardRow = std::clamp(row, 0, int(content.size()) - 1);
    scrollToRow(keyboardRow);
    layoutRows();
    if (LayerRowView* view = rowView(keyboardRow)) {
        QAccessibleEvent event(view, QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

void LayerTableView::keyPressEvent(QKeyEvent* event) {
    const bool moves = event->modifiers() == Qt::AltModifier;
    const bool known = keyboardRow < int(content.size());
    if (!known ||
        (event->modifiers() != Qt::NoModifier && event->modifiers() != Qt::KeypadModifier && !moves)) {
        event->ignore();
        return;
    }
    const QUuid layer = content[std::size_t(keyboardRow)].id;
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down: {
        const bool down = event->key() == Qt::Key_Down;
        const int row = keyboardRow;
        moveKeyboardRow(row + (down ? 1 : -1));
        if (moves && keyboardRow != row)
            moveLayer(row, down ? row + 2 : row - 1);
        break;
    }
    case Qt::Key_Home:
        moveKeyboardRow(0);
        break;
    case Qt::Key_End:
        moveKeyboardRow(int(content.size()) - 1);
        break;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose(layer);
        break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (onDelete)
            onDelete(layer);
        break;
    default:
        event->ignore();
    }
}

void LayerTableView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    moveKeyboardRow(keyboardRow);
}

void LayerTableView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    layoutRows();
}

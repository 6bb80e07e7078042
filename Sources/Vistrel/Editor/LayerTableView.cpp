#include "Editor/LayerTableView.h"

#include "Editor/DevicePixels.h"
#include "Editor/EditorAccessibility.h"
#include "Editor/EditorColors.h"
#include "Editor/LayerRowView.h"
#include "Editor/LayerScrollBar.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QTimer>

namespace {

constexpr double rowGap = LayerTableView::rowPitch - LayerTableView::rowHeight;
constexpr double scrollBarWidth = 9;
constexpr int scrollInterval = 30; // milliseconds

/// The line that shows where a dragged layer would go.
class DropIndicator : public QWidget {
public:
    explicit DropIndicator(QWidget* viewport) : QWidget(viewport) {
        setObjectName(QStringLiteral("layerDropIndicator"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(EditorColors::accent(), 1.5));
        const double y = height() / 2.0;
        painter.setBrush(EditorColors::background());
        painter.drawLine(QPointF(5, y), QPointF(width() - 2, y));
        painter.drawEllipse(QPointF(3.5, y), 2, 2);
    }
};

} // namespace

LayerTableView::LayerTableView(QWidget* parent)
    : QAbstractScrollArea(parent),
      bar(new LayerScrollBar),
      indicator(new DropIndicator(viewport())),
      scroller(new QTimer(this)) {
    EditorAccessibility::install();
    setObjectName(QStringLiteral("layerTable"));
    setAccessibleName(QStringLiteral("Annotation layers, newest first"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::TabFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(bar);
    viewport()->setAutoFillBackground(false);
    scroller->setInterval(scrollInterval);
    connect(scroller, &QTimer::timeout, this, &LayerTableView::followPointer);
}

LayerTableView::~LayerTableView() = default;

void LayerTableView::setRows(std::vector<LayerRow> rows) {
    content = std::move(rows);
    setInsertion(std::nullopt);
    const int last = std::max(int(content.size()) - 1, 0);
    keyboardRow = std::min(keyboardRow, last);
    if (selected && *selected > last)
        selected.reset();
    updateScrollRange();
    layoutRows();
}

void LayerTableView::setSelectedRow(std::optional<int> row) {
    if (selected == row)
        return;
    selected = row;
    if (row)
        keyboardRow = *row;
    layoutRows();
}

void LayerTableView::setMagnification(double magnification) {
    if (scale == magnification)
        return;
    scale = magnification;
    bar->setThickness(std::max(qRound(scrollBarWidth * scale), 5));
    updateScrollRange();
    layoutRows();
}

std::optional<int> LayerTableView::rowOf(const QUuid& layer) const {
    const auto found = std::ranges::find(content, layer, &LayerRow::id);
    return found == content.end() ? std::nullopt : std::optional(int(found - content.begin()));
}

LayerRowView* LayerTableView::rowView(int row) const {
    const auto found = std::ranges::find_if(views, [row](const LayerRowView* view) {
        return view->isVisibleTo(view->parentWidget()) && view->index() == row;
    });
    return found == views.end() ? nullptr : *found;
}

QRect LayerTableView::rowRect(int row) const {
    const double top = row * pitch() - verticalScrollBar()->value() + rowGap / 2 * scale;
    return DevicePixels::roundedEdges({0, top, double(viewport()->width()), rowHeight * scale});
}

std::optional<int> LayerTableView::rowAt(QPointF position) const {
    const double y = position.y() + verticalScrollBar()->value();
    if (y < 0 || pitch() <= 0 || y >= double(content.size()) * pitch())
        return std::nullopt;
    return static_cast<int>(y / pitch());
}

void LayerTableView::scrollToRow(int row) {
    const int top = static_cast<int>(std::floor(row * pitch()));
    const int bottom = static_cast<int>(std::ceil((row + 1) * pitch()));
    QScrollBar& vertical = *verticalScrollBar();
    if (top < vertical.value())
        vertical.setValue(top);
    else if (bottom > vertical.value() + viewport()->height())
        vertical.setValue(bottom - viewport()->height());
}

void LayerTableView::updateScrollRange() {
    // A panel made for all its rows may have been rounded to a point less; that is the last row's gap.
    constexpr double roundedAway = 1;
    const double hidden = double(content.size()) * pitch() - viewport()->height();
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setSingleStep(std::max(qRound(pitch()), 1));
    verticalScrollBar()->setRange(0, hidden > roundedAway ? static_cast<int>(std::ceil(hidden)) : 0);
}

void LayerTableView::layoutRows() {
    const int offset = verticalScrollBar()->value();
    const bool usable = pitch() > 0 && viewport()->height() > 0;
    const int first = usable ? static_cast<int>(offset / pitch()) : 0;
    const int inSight = usable ? static_cast<int>(std::ceil(viewport()->height() / pitch())) + 1 : 0;
    while (int(views.size()) < inSight)
        views.push_back(new LayerRowView(*this, viewport()));
    const int count = int(views.size());
    const int end = std::min(first + inSight, int(content.size()));
    // Row n is always shown by view n modulo the number of views: scrolling by one row changes one view.
    for (int i = 0; i < count; ++i) {
        const int row = first + (((i - first) % count) + count) % count;
        LayerRowView& view = *views[std::size_t(i)];
        if (row >= end) {
            // Hiding the view under the pressed mouse would end the drag.
            if (pendingInsertion)
                view.move(0, -view.height() - 1);
            else
                view.clear();
            continue;
        }
        view.setMagnification(scale);
        view.setGeometry(rowRect(row));
        view.show(content[std::size_t(row)], row);
        view.setFocusRing(hasFocus() && row == keyboardRow);
    }
    updateIndicator();
}

void LayerTableView::resizeEvent(QResizeEvent*) {
    updateScrollRange();
    layoutRows();
}

void LayerTableView::scrollContentsBy(int, int) {
    layoutRows();
}

void LayerTableView::choose(const QUuid& layer) {
    const std::optional<int> row = rowOf(layer);
    if (!row)
        return;
    setSelectedRow(row);
    if (onSelect)
        onSelect(layer);
}

#pragma once

#include "Editor/LayerListRules.h"

#include <QAbstractScrollArea>

#include <functional>

class LayerRowView;

/// The list of layers, newest first. Only the rows in sight have widgets, and those are used again, so
/// that a thousand layers cost no more than five. Design sizes are magnified.
class LayerTableView : public QAbstractScrollArea {
    Q_OBJECT
public:
    static constexpr double rowHeight = 30;
    static constexpr double rowPitch = 32;

    explicit LayerTableView(QWidget* parent = nullptr);
    ~LayerTableView() override;

    std::function<void(const QUuid&)> onSelect;
    std::function<void(const QUuid&)> onDelete;
    /// The layer and its new index in the annotation list.
    std::function<void(const QUuid&, int)> onReorder;

    /// Replaces the rows; a pending drop position is forgotten.
    void setRows(std::vector<LayerRow> rows);
    const std::vector<LayerRow>& rows() const { return content; }
    /// Selects without reporting.
    void setSelectedRow(std::optional<int> row);
    std::optional<int> selectedRow() const { return selected; }
    void setMagnification(double scale);
    double magnification() const { return scale; }

    /// The drop position of the layer being dragged.
    std::optional<int> layerInsertion() const { return pendingInsertion; }
    /// A row in sight; null for any other.
    LayerRowView* rowView(int row) const;
    /// A row's rectangle in the viewport.
    QRect rowRect(int row) const;
    /// The row at a place in the viewport.
    std::optional<int> rowAt(QPointF position) const;
    void scrollToRow(int row);

    /// The three steps of a drag, positions in the viewport.
    void previewMove(QPointF position);
    void finishMove(int row, QPointF position);
    void cancelMove();
    /// The user chose a row.
    void chooseRow(int row);

protected:
    bool viewportEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void updateScrollRange();
    void layoutRows();
    void updateIndicator();
    void autoScrollStep();

    std::vector<LayerRow> content;
    std::vector<LayerRowView*> views;
    std::optional<int> selected;
    std::optional<int> pendingInsertion;
    QWidget* indicator;
    QTimer* scroller;
    QPointF dragPosition;
    double scale = 1;
};

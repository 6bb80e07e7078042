#pragma once

#include "Editor/LayerListRules.h"

#include <QAbstractScrollArea>

#include <functional>

class LayerRowView;
class LayerScrollBar;

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
    /// The drop indicator, for whoever looks at it.
    const QWidget& dropIndicator() const { return *indicator; }
    /// A row in sight; null for any other.
    LayerRowView* rowView(int row) const;
    /// A row's rectangle in the viewport.
    QRect rowRect(int row) const;
    /// The row at a place in the viewport.
    std::optional<int> rowAt(QPointF position) const;
    void scrollToRow(int row);

    /// The two steps of a drag, positions in the viewport. A layer let go outside the list stays.
    void previewMove(QPointF position);
    void finishMove(const QUuid& layer, QPointF position);
    /// Ends a drag without moving anything.
    void cancelMove() { setInsertion(std::nullopt); }
    /// The user chose a layer.
    void choose(const QUuid& layer);
    /// The row that the keyboard acts on.
    int currentRow() const { return keyboardRow; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    std::optional<int> rowOf(const QUuid& layer) const;
    void updateScrollRange();
    void layoutRows();
    void updateIndicator();
    void followPointer();
    void setInsertion(std::optional<int> row);
    void moveKeyboardRow(int row);
    void moveLayer(int row, int insertion);
    double pitch() const { return rowPitch * scale; }

    std::vector<LayerRow> content;
    std::vector<LayerRowView*> views;
    std::optional<int> selected;
    std::optional<int> pendingInsertion;
    LayerScrollBar* bar;
    QWidget* indicator;
    QTimer* scroller;
    QPointF dragPosition;
    int keyboardRow = 0;
    double scale = 1;
};

#pragma once

#include "Annotations/AnnotationTool.h"

#include <QUuid>
#include <QWidget>

class LayerRowView;
class LayerTableView;

/// The tool's icon of a row: a click selects the layer, a drag moves it to another place in the list.
class LayerIcon : public QWidget {
    Q_OBJECT
public:
    static constexpr double iconSize = 20;
    /// The pointer moves this far before a press becomes a drag.
    static constexpr double dragDistance = 3;

    LayerIcon(LayerTableView& table, LayerRowView& row);

    void setTool(AnnotationTool tool);
    void setMagnification(double scale);
    bool isDragging() const { return dragging; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void endGesture();

    LayerTableView& table;
    LayerRowView& row;
    AnnotationTool tool = AnnotationTool::select;
    QPointF start;
    /// The layer that was pressed; the row may show another one after scrolling.
    QUuid pressed;
    bool dragging = false;
    double scale = 1;
};

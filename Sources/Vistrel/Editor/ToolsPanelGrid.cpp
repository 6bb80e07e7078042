#include "Editor/ToolsPanelGrid.h"

#include "Editor/DevicePixels.h"

QRect ToolsPanelGrid::strip() const {
    const double top = size.height() - cellRows * designCell * scale;
    return DevicePixels::roundedEdges({0, 0, double(size.width()), std::max(top, 0.0)});
}

QRect ToolsPanelGrid::cellRect(int row, int column) const {
    const double rowHeight = designCell * scale;
    return DevicePixels::roundedEdges(
        {column * cell(), size.height() - (row + 1) * rowHeight, cell(), rowHeight});
}

std::array<QRectF, 2> ToolsPanelGrid::shape() const {
    const double rowHeight = designCell * scale;
    const double width = size.width();
    const double height = size.height();
    const double upperBottom = std::max(rowHeight - radius(), 0.0);
    const double lowerTop = rowHeight + radius();
    return {QRectF(0, 0, width, height - upperBottom), QRectF(0, height - lowerTop, cell(), lowerTop)};
}

#pragma once

#include <QRect>

#include <array>

/// Where everything stands in the tools panel, in widget points with y down. The design counts rows
/// upwards from the bottom; this is the one place that turns them around.
struct ToolsPanelGrid {
    static constexpr double designCell = 42;
    static constexpr double designStrip = 32;
    static constexpr double minimumStrip = 20;
    static constexpr double designRadius = 6;
    static constexpr int cellRows = 7;
    static constexpr int historyRow = 6;

    double scale = 1;
    /// Size of the panel in whole points.
    QSize size;

    double cell() const { return size.width() / 2.0; }
    double radius() const { return designRadius * scale; }
    /// The size strip above the cells.
    QRect strip() const;
    /// A cell, rows counted upwards from 0 at the bottom, column 0 left and 1 right.
    QRect cellRect(int row, int column) const;
    /// The two rectangles, with rounded corners, that together make the L.
    std::array<QRectF, 2> shape() const;
};

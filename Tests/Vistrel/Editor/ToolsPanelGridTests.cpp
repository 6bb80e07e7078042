#include "Editor/ToolsPanelGrid.h"

#include <QRegion>
#include <gtest/gtest.h>

struct GridCase {
    const char* name;
    double scale;
    QSize size;
};
const GridCase gridCases[] = {
    {"design", 1, {84, 326}},
    {"hundredPercent", 0.8, {67, 261}},
    {"smallestWithFixedStrip", 0.4, {34, 138}},
    {"largest", 1.5, {126, 489}},
    {"fitted", 0.537, {45, 178}},
};

TEST(ToolsPanelGridTests, cellsAndStripFillThePanelWithoutGapsOrOverlap) {
    for (const GridCase& c : gridCases) {
        const ToolsPanelGrid grid{c.scale, c.size};
        QRegion covered = grid.strip();
        qint64 area = qint64(grid.strip().width()) * grid.strip().height();
        for (int row = 0; row < ToolsPanelGrid::cellRows; ++row) {
            for (int column = 0; column < 2; ++column) {
                const QRect cell = grid.cellRect(row, column);
                EXPECT_NEAR(cell.width(), 42 * c.scale, 1) << c.name;
                EXPECT_NEAR(cell.height(), 42 * c.scale, 1) << c.name;
                covered += cell;
                area += qint64(cell.width()) * cell.height();
            }
        }
        EXPECT_EQ(covered, QRegion(QRect(QPoint(0, 0), c.size))) << c.name;
        EXPECT_EQ(area, qint64(c.size.width()) * c.size.height()) << c.name;
        EXPECT_GE(grid.strip().height(), 19) << c.name;
    }
}

TEST(ToolsPanelGridTests, rowsCountUpwards) {
    const ToolsPanelGrid grid{1, {84, 326}};
    EXPECT_EQ(grid.cellRect(0, 0), QRect(0, 284, 42, 42));
    EXPECT_EQ(grid.cellRect(6, 1), QRect(42, 32, 42, 42));
    EXPECT_EQ(grid.strip(), QRect(0, 0, 84, 32));
}

TEST(ToolsPanelGridTests, shapeLeavesOutTheCellBesideText) {
    const ToolsPanelGrid grid{1, {84, 326}};
    const auto [upper, lower] = grid.shape();
    EXPECT_EQ(upper, QRectF(0, 0, 84, 290));
    EXPECT_EQ(lower, QRectF(0, 278, 42, 48));
}

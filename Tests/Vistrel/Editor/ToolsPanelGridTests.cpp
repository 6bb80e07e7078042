#include "Editor/ToolsPanelGrid.h"

#include <QRegion>
#include <gtest/gtest.h>

struct GridCase {
    double scale;
    QSize size;
};

TEST(ToolsPanelGridTests, cellsAndStripFillThePanelWithoutGapsOrOverlap) {
    for (const GridCase& c :
         {GridCase{1, {84, 326}}, {0.4, {34, 138}}, {1.5, {126, 489}}, {0.537, {45, 178}}}) {
        const ToolsPanelGrid grid{c.scale, c.size};
        QRegion covered = grid.strip();
        qint64 area = qint64(grid.strip().width()) * grid.strip().height();
        for (int row = 0; row < ToolsPanelGrid::cellRows; ++row) {
            for (int column = 0; column < 2; ++column) {
                const QRect cell = grid.cellRect(row, column);
                EXPECT_NEAR(cell.width(), 42 * c.scale, 1) << c.scale;
                EXPECT_NEAR(cell.height(), 42 * c.scale, 1) << c.scale;
                covered += cell;
                area += qint64(cell.width()) * cell.height();
            }
        }
        EXPECT_EQ(covered, QRegion(QRect(QPoint(0, 0), c.size))) << c.scale;
        EXPECT_EQ(area, qint64(c.size.width()) * c.size.height()) << c.scale;
        EXPECT_GE(grid.strip().height(), 19) << c.scale;
    }
}

#include "Editor/EditorActionBar.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorStepButton.h"
#include "EditorTestSupport.h"

#include <gtest/gtest.h>

using namespace EditorTestSupport;

TEST(EditorStepButtonTests, aStepActsOncePerPressOfTheFirstButton) {
    EditorStepButton step(true);
    int actions = 0;
    step.onAction = [&] { ++actions; };
    present(step);
    QTest::mousePress(&step, Qt::LeftButton);
    EXPECT_EQ(actions, 1);
    QTest::mouseRelease(&step, Qt::LeftButton);
    QTest::mousePress(&step, Qt::RightButton);
    EXPECT_EQ(actions, 1);
    step.setEnabled(false);
    QTest::mousePress(&step, Qt::LeftButton);
    EXPECT_EQ(actions, 1);
}

TEST(EditorActionBarTests, itemsShareTheBarWithoutGapsAtAnyScale) {
    EditorActionBar bar;
    for (int i = 0; i < 4; ++i)
        bar.addArrangedSubview(*new EditorButton);
    for (const double scale : {0.4, 0.537, 1.5}) {
        bar.place({10.3, 20.6, 196 * scale, 44 * scale}, scale);
        EXPECT_EQ(bar.geometry().topLeft(), QPoint(10, 21));
        int x = 0;
        for (const QWidget* item : bar.arrangedSubviews()) {
            EXPECT_EQ(item->x(), x) << scale;
            EXPECT_NEAR(item->width(), 49 * scale, 1) << scale;
            x += item->width();
        }
        EXPECT_EQ(x, bar.width()) << scale;
    }
}

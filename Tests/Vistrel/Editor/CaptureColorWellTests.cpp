#include "Editor/CaptureColorWell.h"

#include "EditorTestSupport.h"

#include <QColorDialog>
#include <QWindow>
#include <gtest/gtest.h>

using namespace EditorTestSupport;

class CaptureColorWellTests : public ::testing::Test {
protected:
    void SetUp() override {
        well.resize(42, 42);
        well.onColor = [this](const QColor& color) { colors.push_back(color); };
        CaptureColorWell::restoreDialog = [this](QWidget&) { ++restored; };
        present(window);
    }
    void TearDown() override {
        well.closePicker();
        CaptureColorWell::restoreDialog = nullptr;
    }

    Canvas window;
    CaptureColorWell well{&window};
    std::vector<QColor> colors;
    int restored = 0;
};

TEST_F(CaptureColorWellTests, whateverHidesTheDialogEndsThePicker) {
    well.activate();
    CaptureColorWell::sharedDialog().reject();
    EXPECT_FALSE(well.isActive());
    EXPECT_EQ(restored, 1);
    well.activate();
    window.hide();
    EXPECT_FALSE(well.isActive());
    EXPECT_EQ(restored, 2);
}

TEST_F(CaptureColorWellTests, choicesAreOpaqueAndReportedOncePerGesture) {
    well.activate();
    QColorDialog& dialog = CaptureColorWell::sharedDialog();
    dialog.setCurrentColor(QColor(10, 20, 30, 128));
    EXPECT_EQ(colors, std::vector{QColor(10, 20, 30)});
    EXPECT_EQ(well.color(), QColor(10, 20, 30));

    colors.clear();
    QTest::mousePress(dialog.windowHandle(), Qt::LeftButton, {}, QPoint(2, 2));
    for (int level = 1; level <= 50; ++level)
        dialog.setCurrentColor(QColor(level, 0, 0));
    EXPECT_TRUE(colors.empty());
    EXPECT_EQ(well.color(), QColor(50, 0, 0)) << "the well follows";
    QTest::mouseRelease(dialog.windowHandle(), Qt::LeftButton, {}, QPoint(2, 2));
    QCoreApplication::processEvents();
    EXPECT_EQ(colors, std::vector{QColor(50, 0, 0)});
}

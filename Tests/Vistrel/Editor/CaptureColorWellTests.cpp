#include "Editor/CaptureColorWell.h"

#include "EditorTestSupport.h"

#include <QColorDialog>
#include <QWindow>
#include <gtest/gtest.h>

using namespace EditorTestSupport;

class CaptureColorWellTests : public ::testing::Test {
protected:
    void SetUp() override {
        window.resize(200, 200);
        second.move(60, 0);
        for (CaptureColorWell* well : {&first, &second}) {
            well->resize(42, 42);
            well->onColor = [this](const QColor& color) { colors.push_back(color); };
        }
        first.onPickerClosed = [this] { ++closed; };
        CaptureColorWell::prepareDialog = [this](QWidget&) { ++prepared; };
        CaptureColorWell::restoreDialog = [this](QWidget&) { ++restored; };
        present(window);
    }
    void TearDown() override {
        first.closePicker();
        second.closePicker();
        CaptureColorWell::prepareDialog = nullptr;
        CaptureColorWell::restoreDialog = nullptr;
    }

    Canvas window;
    CaptureColorWell first{&window};
    CaptureColorWell second{&window};
    std::vector<QColor> colors;
    int closed = 0;
    int prepared = 0;
    int restored = 0;
};

TEST_F(CaptureColorWellTests, oneWellAtATimeOwnsTheDialog) {
    first.setColor(Qt::yellow);
    first.activate();
    first.activate();
    EXPECT_EQ(prepared, 1);
    EXPECT_EQ(CaptureColorWell::sharedDialog().currentColor(), QColor(Qt::yellow));
    EXPECT_TRUE(colors.empty()) << "opening chooses nothing";
    second.activate();
    EXPECT_FALSE(first.isActive());
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(restored, 1);
    EXPECT_EQ(prepared, 2);
    first.closePicker();
    EXPECT_EQ(restored, 1);
    EXPECT_TRUE(CaptureColorWell::sharedDialog().isVisible()) << "not its picker";
    CaptureColorWell::sharedDialog().setCurrentColor(Qt::green);
    EXPECT_EQ(second.color(), QColor(Qt::green));
    EXPECT_EQ(first.color(), QColor(Qt::yellow));
}

TEST_F(CaptureColorWellTests, whateverHidesTheDialogEndsThePicker) {
    first.activate();
    CaptureColorWell::sharedDialog().reject();
    EXPECT_FALSE(first.isActive());
    EXPECT_EQ(restored, 1);
    first.activate();
    window.hide();
    EXPECT_FALSE(first.isActive());
    EXPECT_EQ(restored, 2);
}

TEST_F(CaptureColorWellTests, choicesAreOpaqueAndReportedOncePerGesture) {
    first.activate();
    QColorDialog& dialog = CaptureColorWell::sharedDialog();
    dialog.setCurrentColor(QColor(10, 20, 30, 128));
    EXPECT_EQ(colors, std::vector{QColor(10, 20, 30)});
    EXPECT_EQ(first.color(), QColor(10, 20, 30));

    colors.clear();
    QTest::mousePress(dialog.windowHandle(), Qt::LeftButton, {}, QPoint(2, 2));
    for (int level = 1; level <= 50; ++level)
        dialog.setCurrentColor(QColor(level, 0, 0));
    EXPECT_TRUE(colors.empty());
    EXPECT_EQ(first.color(), QColor(50, 0, 0)) << "the well follows";
    QTest::mouseRelease(dialog.windowHandle(), Qt::LeftButton, {}, QPoint(2, 2));
    QCoreApplication::processEvents();
    EXPECT_EQ(colors, std::vector{QColor(50, 0, 0)});
}

TEST(CaptureColorWellPlaceTests, theDialogStandsBesideTheWellOnItsScreen) {
    struct PositionCase {
        const char* name;
        QRect well, screen;
        QPoint expected;
    };
    const PositionCase cases[] = {
        {"rightOfTheWell", {100, 100, 40, 40}, {0, 0, 1000, 800}, {152, 100}},
        {"leftWhereTheRightHasNoRoom", {800, 100, 40, 40}, {0, 0, 1000, 800}, {388, 100}},
        {"heldAtTheBottom", {100, 700, 40, 40}, {0, 0, 1000, 800}, {152, 500}},
        {"smallScreen", {1100, 10, 40, 40}, {1000, 0, 300, 200}, {1000, 0}},
    };
    for (const PositionCase& c : cases)
        EXPECT_EQ(CaptureColorWell::dialogPosition(c.well, {400, 300}, c.screen), c.expected) << c.name;
}

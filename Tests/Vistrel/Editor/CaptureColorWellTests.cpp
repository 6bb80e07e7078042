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
        CaptureColorWell::prepareDialog = [this](QWidget& dialog) {
            ++prepared;
            EXPECT_FALSE(dialog.isVisible());
        };
        CaptureColorWell::restoreDialog = [this](QWidget& dialog) {
            ++restored;
            EXPECT_FALSE(dialog.isVisible());
        };
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

TEST_F(CaptureColorWellTests, aPressOpensTheDialogForThisWell) {
    first.setColor(Qt::yellow);
    QTest::mousePress(&first, Qt::LeftButton);
    QTest::mouseRelease(&first, Qt::LeftButton);
    EXPECT_TRUE(first.isActive());
    EXPECT_EQ(prepared, 1);
    EXPECT_TRUE(CaptureColorWell::sharedDialog().isVisible());
    EXPECT_EQ(CaptureColorWell::sharedDialog().currentColor(), QColor(Qt::yellow));
    EXPECT_FALSE(CaptureColorWell::sharedDialog().testOption(QColorDialog::ShowAlphaChannel));
    EXPECT_TRUE(colors.empty()) << "opening chooses nothing";
    EXPECT_EQ(window.presses, 0);
}

TEST_F(CaptureColorWellTests, oneWellAtATimeOwnsTheDialog) {
    first.activate();
    second.activate();
    EXPECT_FALSE(first.isActive());
    EXPECT_TRUE(second.isActive());
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(restored, 1);
    EXPECT_EQ(prepared, 2);
    first.closePicker();
    EXPECT_TRUE(CaptureColorWell::sharedDialog().isVisible()) << "not its picker";
    CaptureColorWell::sharedDialog().setCurrentColor(Qt::green);
    EXPECT_EQ(second.color(), QColor(Qt::green));
    EXPECT_NE(first.color(), QColor(Qt::green));
}

TEST_F(CaptureColorWellTests, closingTwiceRestoresOnce) {
    first.activate();
    first.activate();
    EXPECT_EQ(prepared, 1);
    first.closePicker();
    first.closePicker();
    EXPECT_EQ(restored, 1);
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(CaptureColorWell::sharedDialog().isVisible());
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
    {
        CaptureColorWell passing(&window);
        window.show();
        passing.activate();
    }
    EXPECT_FALSE(CaptureColorWell::sharedDialog().isVisible());
}

TEST_F(CaptureColorWellTests, choicesAreOpaqueAndReportedOncePerGesture) {
    first.activate();
    QColorDialog& dialog = CaptureColorWell::sharedDialog();
    dialog.setCurrentColor(QColor(10, 20, 30, 128));
    EXPECT_EQ(colors, std::vector{QColor(10, 20, 30)});
    EXPECT_EQ(first.color(), QColor(10, 20, 30));

    colors.clear();
    QWidget* inside = dialog.findChild<QWidget*>();
    ASSERT_NE(inside, nullptr);
    QTest::mousePress(dialog.windowHandle(), Qt::LeftButton, {}, QPoint(2, 2));
    for (int level = 1; level <= 50; ++level)
        dialog.setCurrentColor(QColor(level, 0, 0));
    EXPECT_TRUE(colors.empty());
    EXPECT_EQ(first.color(), QColor(50, 0, 0)) << "the well follows";
    QTest::mouseRelease(dialog.windowHandle(), Qt::LeftButton, {}, QPoint(2, 2));
    QCoreApplication::processEvents();
    EXPECT_EQ(colors, std::vector{QColor(50, 0, 0)});
}

TEST_F(CaptureColorWellTests, aDisabledWellOpensNothingAndKeepsThePress) {
    first.setEnabled(false);
    QTest::mouseClick(&first, Qt::LeftButton);
    first.activate();
    EXPECT_FALSE(first.isActive());
    EXPECT_EQ(window.presses, 0);
}

struct PositionCase {
    const char* name;
    QRect well;
    QPoint expected;
};
const PositionCase positionCases[] = {
    {"rightOfTheWell", {100, 100, 40, 40}, {152, 100}},
    {"leftWhereTheRightHasNoRoom", {800, 100, 40, 40}, {388, 100}},
    {"heldAtTheBottom", {100, 700, 40, 40}, {152, 500}},
};

TEST(CaptureColorWellPlaceTests, theDialogStandsBesideTheWellOnItsScreen) {
    for (const PositionCase& c : positionCases)
        EXPECT_EQ(CaptureColorWell::dialogPosition(c.well, {400, 300}, {0, 0, 1000, 800}), c.expected)
            << c.name;
    EXPECT_EQ(CaptureColorWell::dialogPosition({1100, 10, 40, 40}, {400, 300}, {1000, 0, 300, 200}),
              QPoint(1000, 0))
        << "a screen smaller than the dialog";
}

TEST_F(CaptureColorWellTests, theFillIsTheColourOrThePanelWhenDisabled) {
    leave(first);
    first.setColor(Qt::green);
    EXPECT_EQ(first.grab().toImage().pixel(21, 21), QColor(Qt::green).rgb());
    first.setEnabled(false);
    EXPECT_EQ(first.grab().toImage().pixel(21, 21), QColor::fromRgbF(0.92F, 0.92F, 0.93F).rgb());
}

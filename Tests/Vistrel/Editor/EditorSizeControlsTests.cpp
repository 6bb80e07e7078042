#include "Editor/EditorSizeControls.h"

#include "Editor/EditorSizeField.h"
#include "Editor/EditorStepButton.h"
#include "EditorTestSupport.h"

#include <gtest/gtest.h>

using namespace EditorTestSupport;

struct StepWidthCase {
    const char* name;
    double scale;
    double strip;
    double step;
    double digits;
};
const StepWidthCase stepWidthCases[] = {
    {"design", 1, 84, 21.6, 15.6},
    {"half", 0.5, 42, 12, 12},
    {"narrowStrip", 0.5, 20, 10, 12},
    {"large", 1.5, 126, 32.4, 23.4},
    {"hundredPercent", 0.8, 67, 17.28, 12.48},
};

TEST(EditorSizeControlsTests, stepsAndDigitsHaveReadableMinimums) {
    for (const StepWidthCase& c : stepWidthCases) {
        EXPECT_NEAR(EditorSizeControls::stepWidth(c.scale, c.strip), c.step, 1e-9) << c.name;
        EXPECT_NEAR(EditorSizeControls::digitSize(c.scale), c.digits, 1e-9) << c.name;
    }
}

struct NumberCase {
    const char* text;
    std::optional<int> expected;
};
const NumberCase numberCases[] = {
    {"12", 12},
    {"+7", 7},
    {"-3", -3},
    {"0", 0},
    {"007", 7},
    {"", std::nullopt},
    {"+", std::nullopt},
    {"abc", std::nullopt},
    {"1.5", std::nullopt},
    {" 5", std::nullopt},
    {"5 ", std::nullopt},
    {"٣", std::nullopt},
    {"999999999999", 1'000'000'000},
    {"-999999999999", -1'000'000'000},
};

TEST(EditorSizeFieldTests, onlyWholeDecimalNumbersCount) {
    for (const NumberCase& c : numberCases)
        EXPECT_EQ(EditorSizeField::number(QString::fromUtf8(c.text)), c.expected) << c.text;
}

class SizeStripTests : public ::testing::Test {
protected:
    void SetUp() override {
        window.resize(300, 100);
        strip.setGeometry(10, 10, 84, 32);
        strip.addArrangedSubview(minus);
        strip.addArrangedSubview(plus);
        strip.insertArrangedSubview(field, 1);
        field.onCommit = [this] { ++commits; };
        other.setFocusPolicy(Qt::StrongFocus);
        present(window);
    }

    QWidget window;
    QWidget other{&window};
    EditorSizeControls& strip = *new EditorSizeControls(&window);
    EditorStepButton& minus = *new EditorStepButton(false);
    EditorStepButton& plus = *new EditorStepButton(true);
    EditorSizeField& field = *new EditorSizeField;
    int commits = 0;
};

TEST_F(SizeStripTests, theFieldLiesUnderTheStepButtonsAcrossTheStrip) {
    EXPECT_EQ(field.geometry(), strip.rect());
    EXPECT_EQ(minus.geometry(), QRect(0, 0, 22, 32));
    EXPECT_EQ(plus.geometry(), QRect(62, 0, 22, 32));
    EXPECT_EQ(strip.childAt(5, 16), &minus);
    EXPECT_EQ(strip.childAt(42, 16), &field);
    EXPECT_EQ(strip.childAt(80, 16), &plus);
    EXPECT_EQ(strip.arrangedSubviews()[1], &field);
}

TEST_F(SizeStripTests, whatWasTypedIsReportedOnce) {
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, QStringLiteral("42"));
    EXPECT_EQ(commits, 0);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(commits, 1);
    other.setFocus();
    EXPECT_EQ(commits, 1) << "nothing typed since";
    field.setFocus();
    QTest::keyClicks(&field, QStringLiteral("5"));
    other.setFocus();
    EXPECT_EQ(commits, 2) << "editing ended";
}

TEST_F(SizeStripTests, aSizeFromOutsideDoesNotOverwriteTyping) {
    field.showSize(3);
    EXPECT_EQ(field.text(), QStringLiteral("3"));
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, QStringLiteral("4"));
    field.showSize(9);
    EXPECT_EQ(field.text(), QStringLiteral("4"));
    QTest::keyClick(&field, Qt::Key_Enter);
    field.showSize(9);
    EXPECT_EQ(field.text(), QStringLiteral("9"));
}

TEST_F(SizeStripTests, theFirstClickMarksTheNumber) {
    field.showSize(24);
    QTest::mouseClick(&field, Qt::LeftButton, {}, QPoint(42, 16));
    EXPECT_EQ(field.selectedText(), QStringLiteral("24"));
}

#include "Editor/EditorHint.h"

#include "Editor/EditorButton.h"
#include "EditorTestSupport.h"

#include <gtest/gtest.h>

using namespace EditorTestSupport;

struct FrameCase {
    const char* name;
    QRectF control;
    double label;
    QRectF expected;
};
const FrameCase frameCases[] = {
    {"besideTheControl", {100, 100, 40, 40}, 50.2, {146, 108.8, 67, 22.4}},
    {"heldAtTheRightEdge", {960, 100, 40, 40}, 50, {934, 108.8, 66, 22.4}},
    {"heldAtTheTop", {100, -20, 40, 20}, 50, {146, 0, 66, 22.4}},
    {"heldAtTheBottom", {100, 790, 40, 20}, 50, {146, 777.6, 66, 22.4}},
    {"leftOfTheWindow", {-80, 100, 40, 40}, 50, {0, 108.8, 66, 22.4}},
};

TEST(EditorHintTests, bubblesStandBesideTheControlInsideTheWindow) {
    for (const FrameCase& c : frameCases) {
        const QRectF frame = EditorHint::frame(c.control, {0, 0, 1000, 800}, c.label);
        EXPECT_NEAR(frame.x(), c.expected.x(), 1e-9) << c.name;
        EXPECT_NEAR(frame.y(), c.expected.y(), 1e-9) << c.name;
        EXPECT_NEAR(frame.width(), c.expected.width(), 1e-9) << c.name;
        EXPECT_NEAR(frame.height(), c.expected.height(), 1e-9) << c.name;
    }
}

class EditorHintControlTests : public ::testing::Test {
protected:
    void SetUp() override {
        window.resize(400, 300);
        button.setGeometry(20, 20, 40, 40);
        button.setToolTip(QStringLiteral("Pen (P)"));
        present(window);
    }

    QWidget window;
    EditorButton button{&window};
};

TEST_F(EditorHintControlTests, aHoverShowsTheHintWhenItsDelayEnds) {
    EXPECT_FALSE(button.hint().isPending());
    enter(button);
    EXPECT_TRUE(button.hint().isPending());
    EXPECT_FALSE(button.hint().isShown());
    button.hint().show();
    ASSERT_TRUE(button.hint().isShown());
    const QWidget* bubble = button.hint().shownBubble();
    EXPECT_EQ(bubble->window(), &window);
    EXPECT_TRUE(bubble->testAttribute(Qt::WA_TransparentForMouseEvents));
    EXPECT_EQ(window.childAt(bubble->geometry().center()), nullptr) << "the bubble takes no mouse";
    EXPECT_EQ(bubble->accessibleName(), QStringLiteral("Pen (P)"));
}

TEST_F(EditorHintControlTests, whatEndsTheHoverEndsTheHint) {
    struct EndCase {
        const char* name;
        std::function<void()> end;
    };
    const EndCase cases[] = {
        {"leave", [&] { leave(button); }},
        {"press",
         [&] {
             QTest::mousePress(&button, Qt::LeftButton);
             QTest::mouseRelease(&button, Qt::LeftButton);
         }},
        {"hide",
         [&] {
             button.hide();
             button.show();
         }},
        {"dismissAll", [&] { EditorButton::dismissHints(window); }},
    };
    for (const EndCase& c : cases) {
        enter(button);
        button.hint().show();
        ASSERT_TRUE(button.hint().isShown()) << c.name;
        c.end();
        EXPECT_FALSE(button.hint().isShown()) << c.name;
        EXPECT_FALSE(button.hint().isPending()) << c.name;
        enter(button);
        c.end();
        EXPECT_FALSE(button.hint().isPending()) << c.name;
    }
}

TEST_F(EditorHintControlTests, nothingIsShownWithoutHoverTextOrSight) {
    button.hint().show();
    EXPECT_FALSE(button.hint().isShown()) << "not hovered";
    enter(button);
    button.setToolTip(QString());
    button.hint().show();
    EXPECT_FALSE(button.hint().isShown()) << "no text";
    button.setToolTip(QStringLiteral("Pen"));
    window.hide();
    enter(button);
    button.hint().show();
    EXPECT_FALSE(button.hint().isShown()) << "window not visible";
}

TEST_F(EditorHintControlTests, disabledButtonsExplainThemselvesToo) {
    button.setEnabled(false);
    enter(button);
    button.hint().show();
    EXPECT_TRUE(button.hint().isShown());
}

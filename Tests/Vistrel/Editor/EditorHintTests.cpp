#include "Editor/EditorHint.h"

#include "Editor/EditorButton.h"
#include "EditorTestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace EditorTestSupport;

TEST(EditorHintTests, bubblesStandBesideTheControlInsideTheWindow) {
    for (const auto& [control, place] : {std::pair(QRectF(100, 100, 40, 40), QPointF(146, 108.8)),
                                         {{960, 100, 40, 40}, {934, 108.8}},
                                         {{100, -20, 40, 20}, {146, 0}},
                                         {{100, 790, 40, 20}, {146, 777.6}},
                                         {{-80, 100, 40, 40}, {0, 108.8}}}) {
        const QRectF frame = EditorHint::frame(control, {0, 0, 1000, 800}, 50);
        EXPECT_LT((frame.topLeft() - place).manhattanLength(), 1e-9) << control.x() << ' ' << control.y();
        EXPECT_EQ(frame.size(), QSizeF(66, 22.4));
    }
}

TEST(EditorHintTests, whatEndsTheHoverEndsTheHint) {
    QWidget window;
    window.resize(400, 300);
    EditorButton button(&window);
    button.setGeometry(20, 20, 40, 40);
    button.setToolTip(u"Pen (P)"_s);
    present(window);
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"leave", [&] { leave(button); }},
        {"press", [&] { QTest::mouseClick(&button, Qt::LeftButton); }},
        {"hide",
         [&] {
             button.hide();
             button.show();
         }},
        {"dismissAll", [&] { EditorButton::dismissHints(window); }},
    };
    for (const auto& [name, end] : cases) {
        enter(button);
        EXPECT_FALSE(button.hint().isShown()) << name;
        end();
        EXPECT_FALSE(button.hint().isPending()) << name;
        enter(button);
        button.hint().show();
        ASSERT_TRUE(button.hint().isShown()) << name;
        const QPoint place = button.hint().shownBubble()->geometry().center();
        EXPECT_EQ(window.childAt(place), nullptr) << "the bubble takes no mouse";
        end();
        EXPECT_FALSE(button.hint().isShown()) << name;
    }
}

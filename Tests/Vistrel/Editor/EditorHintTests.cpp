#include "Editor/EditorHint.h"

#include "Editor/EditorButton.h"
#include "EditorTestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace EditorTestSupport;

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

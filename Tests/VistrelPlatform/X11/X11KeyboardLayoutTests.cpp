#include "VistrelPlatform/X11/X11KeyboardLayout.h"

#include "VistrelPlatform/X11/X11TestSession.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(X11KeyboardLayout, FollowsTheUsersLayout) {
    constexpr KeyCode aKey = 0;
    constexpr KeyCode qKey = 12;
    constexpr KeyCode yKey = 16;
    constexpr KeyCode nineKey = 25;
    const X11KeyboardLayout keyboard;
    const struct {
        const char* layouts;
        const char* texts; // of A, 9 and Y
        char32_t character;
        std::optional<TypingKey> typing;
    } rows[] = {
        {"us", "a9y", U'(', TypingKey{nineKey, true}},
        {"fr", "qçy", U'9', TypingKey{nineKey, true}},
        {"fr", "qçy", U'a', TypingKey{qKey, false}},
        {"de", "a9z", U'z', TypingKey{yKey, false}},
        {"ru,us", "ф9н", U'ф', TypingKey{aKey, false}},
        {"ru,us", "ф9н", U'f', TypingKey{3, false}}, // of the second group
        {"ru,us", "ф9н", U'€', {}},
        {"us", "a9y", U'a', TypingKey{aKey, false}},
    };
    for (const auto& row : rows) {
        const auto program =
            testSession().start(u"setxkbmap"_s, {u"-layout"_s, QString::fromLatin1(row.layouts)});
        ASSERT_EQ(program->waitForExit(patience), 0) << program->standardError().constData();
        EXPECT_TRUE(waitUntil([&] {
            return keyboard.textOf(aKey) + keyboard.textOf(nineKey) + keyboard.textOf(yKey) ==
                   QString::fromUtf8(row.texts);
        })) << row.texts;
        EXPECT_EQ(keyboard.keyTyping(row.character), row.typing) << row.texts;
    }
    EXPECT_EQ(keyboard.textOf(122), QString()) << "F1 types nothing";
    EXPECT_EQ(keyboard.textOf(92), QString()) << "the keypad's 9 is no letter key";
}

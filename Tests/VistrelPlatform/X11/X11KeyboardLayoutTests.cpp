#include "VistrelPlatform/X11/X11KeyboardLayout.h"

#include "Desktop/Fixture/Waiting.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <gtest/gtest.h>

namespace {

constexpr KeyCode aKey = 0;
constexpr KeyCode fKey = 3;
constexpr KeyCode qKey = 12;
constexpr KeyCode yKey = 16;
constexpr KeyCode nineKey = 25;
constexpr KeyCode keypadNine = 92;

class X11KeyboardLayoutTest : public ::testing::Test {
protected:
    ~X11KeyboardLayoutTest() override { use("us"); }

    /// Returns when the layout has followed: every one used here has something else on this key.
    void use(const char* layouts) {
        const QString before = keyboard.textOf(aKey) + keyboard.textOf(nineKey) + keyboard.textOf(yKey);
        const auto program = testSession().start(QStringLiteral("setxkbmap"),
                                                 {QStringLiteral("-layout"), QLatin1String(layouts)});
        ASSERT_EQ(program->waitForExit(patience), 0) << program->standardError().constData();
        const auto now = [&] {
            return keyboard.textOf(aKey) + keyboard.textOf(nineKey) + keyboard.textOf(yKey);
        };
        ASSERT_TRUE(waitUntil([&] { return now() != before; })) << layouts;
    }

    X11KeyboardLayout keyboard;
};

TEST_F(X11KeyboardLayoutTest, FollowsTheUsersLayout) {
    EXPECT_EQ(keyboard.textOf(nineKey), QStringLiteral("9"));
    EXPECT_EQ(keyboard.keyTyping(U'('), (TypingKey{nineKey, true}));
    EXPECT_EQ(keyboard.textOf(122), QString()) << "F1 types nothing";
    EXPECT_EQ(keyboard.textOf(keypadNine), QString());

    use("fr");
    EXPECT_EQ(keyboard.textOf(nineKey), QStringLiteral("ç"));
    EXPECT_EQ(keyboard.keyTyping(U'9'), (TypingKey{nineKey, true}));
    EXPECT_EQ(keyboard.keyTyping(U'a'), (TypingKey{qKey, false}));

    use("de");
    EXPECT_EQ(keyboard.keyTyping(U'z'), (TypingKey{yKey, false}));
    EXPECT_EQ(keyboard.textOf(yKey), QStringLiteral("z"));
}

TEST_F(X11KeyboardLayoutTest, TheActiveGroupTypesAndTheOthersAreStillFound) {
    use("ru,us");
    EXPECT_EQ(keyboard.textOf(aKey), QStringLiteral("ф"));
    EXPECT_EQ(keyboard.keyTyping(U'ф'), (TypingKey{aKey, false}));
    EXPECT_EQ(keyboard.keyTyping(U'f'), (TypingKey{fKey, false})) << "of the second group";
    EXPECT_EQ(keyboard.keyTyping(U'€'), std::nullopt);
}

} // namespace

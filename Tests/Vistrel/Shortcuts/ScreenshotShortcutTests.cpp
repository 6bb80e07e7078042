#include "Shortcuts/ScreenshotShortcut.h"

#include <gtest/gtest.h>

namespace {

const ScreenshotShortcut standard{25, 768, QStringLiteral("9")};
const ScreenshotShortcut commandShiftP{35, 768, QStringLiteral("P")};
const ScreenshotShortcut controlF{3, 4096, QStringLiteral("F")};

struct StartCase {
    const char* name;
    std::optional<QByteArray> saved;
    std::optional<QByteArray> legacy;
    ScreenshotShortcut expected;
};

class InitialSet : public testing::TestWithParam<StartCase> {};

struct KeyCase {
    const char* name;
    ShortcutKeyEvent event;
    /// Empty when the key press is refused.
    QString label;
};

class FromEvent : public testing::TestWithParam<KeyCase> {};

ShortcutKeyEvent key(KeyCode code, ModifierMask modifiers, const char* text = nullptr,
                     const char* secondText = nullptr) {
    ShortcutKeyEvent event;
    event.keyCode = code;
    event.modifiers = modifiers;
    if (text)
        event.characters = QString::fromUtf8(text);
    if (secondText)
        event.charactersIgnoringModifiers = QString::fromUtf8(secondText);
    return event;
}

ShortcutKeyEvent printScreen() {
    ShortcutKeyEvent event = key(Key::printScreen, 0);
    event.isPrintScreen = event.isFunctionKey = true;
    return event;
}

ShortcutKeyEvent arrow() {
    ShortcutKeyEvent event = key(Key::leftArrow, 256, "x");
    event.isFunctionKey = true;
    return event;
}

const QByteArray labelledOtherwise = R"([{"keyCode":25,"modifiers":768,"keyLabel":"("}])";

} // namespace

TEST(ScreenshotShortcut, LabelsNameModifiersInTheUsualOrder) {
    EXPECT_EQ(ScreenshotShortcut::defaultShortcut(), standard);
    EXPECT_EQ(standard.label(), QStringLiteral("⇧⌘9"));
    EXPECT_EQ((ScreenshotShortcut{0, 0x1b00, QStringLiteral("A")}.label()), QStringLiteral("⌃⌥⇧⌘A"));
    EXPECT_EQ((ScreenshotShortcut{105, 0, QStringLiteral("Print Screen (F13)")}.label()),
              QStringLiteral("Print Screen (F13)"));
}

TEST(ScreenshotShortcut, JSONKeepsItsOrderAndItsText) {
    EXPECT_EQ(standard.encode(), R"({"keyCode":25,"modifiers":768,"keyLabel":"9"})");
    EXPECT_EQ(
        ScreenshotShortcut::encodeList({standard, controlF}),
        R"([{"keyCode":25,"modifiers":768,"keyLabel":"9"},{"keyCode":3,"modifiers":4096,"keyLabel":"F"}])");
    EXPECT_EQ(ScreenshotShortcut::encodeList({}), "[]");
    for (const QString& label :
         {QStringLiteral("\""), QStringLiteral("\\"), QStringLiteral("Ö"), QString()}) {
        const ScreenshotShortcut shortcut{4294967295U, 256, label};
        EXPECT_EQ(ScreenshotShortcut::decode(shortcut.encode()), shortcut);
    }
}

TEST(ScreenshotShortcut, UnreadableJSONIsNothing) {
    for (const char* json : {"", "[]", "nonsense", R"({"keyCode":25,"modifiers":768})",
                             R"({"keyCode":"25","modifiers":768,"keyLabel":"9"})",
                             R"({"keyCode":2.5,"modifiers":768,"keyLabel":"9"})",
                             R"({"keyCode":-1,"modifiers":768,"keyLabel":"9"})",
                             R"({"keyCode":4294967296,"modifiers":768,"keyLabel":"9"})",
                             R"({"keyCode":25,"modifiers":768,"keyLabel":9})"})
        EXPECT_FALSE(ScreenshotShortcut::decode(json)) << json;
    EXPECT_FALSE(ScreenshotShortcut::decodeList(standard.encode()));
    EXPECT_FALSE(ScreenshotShortcut::decodeList("[" + standard.encode() + ",{}]"));
}

TEST_P(InitialSet, IsExactlyOne) {
    EXPECT_EQ(ScreenshotShortcut::initialSet(GetParam().saved, GetParam().legacy),
              std::vector{GetParam().expected});
}

INSTANTIATE_TEST_SUITE_P(
    All, InitialSet,
    testing::Values(
        StartCase{"nothingStored", {}, {}, standard},
        StartCase{"defaultWinsWhereverItStands", ScreenshotShortcut::encodeList({commandShiftP, standard}),
                  controlF.encode(), standard},
        StartCase{
            "firstOfOthers", ScreenshotShortcut::encodeList({commandShiftP, controlF}), {}, commandShiftP},
        StartCase{"emptyListFallsBack", QByteArray("[]"), controlF.encode(), controlF},
        StartCase{"brokenListFallsBack", QByteArray("[{}]"), controlF.encode(), controlF},
        StartCase{"brokenBoth", QByteArray("x"), QByteArray("{}"), standard},
        StartCase{"anotherLabelIsNotTheDefault", labelledOtherwise, {}, {25, 768, QStringLiteral("(")}}),
    [](const auto& row) { return row.param.name; });

TEST_P(FromEvent, AcceptsOrRefuses) {
    const auto shortcut = ScreenshotShortcut::from(GetParam().event);
    EXPECT_EQ(shortcut ? shortcut->label() : QString(), GetParam().label);
    if (shortcut) {
        EXPECT_EQ(shortcut->keyCode, GetParam().event.keyCode);
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, FromEvent,
    testing::Values(KeyCase{"escapeWithCommand", key(53, 256, "\x1b"), {}},
                    KeyCase{"bareF13", key(105, 0), QStringLiteral("Print Screen (F13)")},
                    KeyCase{"F13WithOption", key(105, 0x800), QStringLiteral("⌥Print Screen (F13)")},
                    KeyCase{"printScreen", printScreen(), QStringLiteral("Print Screen")},
                    KeyCase{"optionShiftA", key(0, 0xa00, "a"), {}}, KeyCase{"bareA", key(0, 0, "a"), {}},
                    KeyCase{"controlA", key(0, 0x1000, "a"), QStringLiteral("⌃A")},
                    KeyCase{"commandShiftA", key(0, 0x300, "a"), QStringLiteral("⇧⌘A")},
                    KeyCase{"sharpSGrows", key(27, 0x100, "ß"), QStringLiteral("⌘SS")},
                    KeyCase{"arrow", arrow(), {}}, KeyCase{"emptyText", key(0, 256, ""), {}},
                    KeyCase{"noText", key(0, 256), {}},
                    KeyCase{"secondText", key(0, 256, nullptr, "q"), QStringLiteral("⌘Q")},
                    KeyCase{"otherBitsAreDropped", key(0, 0x10100, "a"), QStringLiteral("⌘A")}),
    [](const auto& row) { return row.param.name; });

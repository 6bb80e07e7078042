#include "Shortcuts/ScreenshotShortcut.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const ScreenshotShortcut standard{25, 768, u"9"_s};
const ScreenshotShortcut commandShiftP{35, 768, u"P"_s};
const ScreenshotShortcut controlF{3, 4096, u"F"_s};

TEST(ScreenshotShortcut, JSONKeepsItsOrderAndItsText) {
    EXPECT_EQ(
        ScreenshotShortcut::encodeList({standard, controlF}),
        R"([{"keyCode":25,"modifiers":768,"keyLabel":"9"},{"keyCode":3,"modifiers":4096,"keyLabel":"F"}])");
    for (const QString& label : {u"\""_s, u"\\"_s, u"Ö"_s, QString()}) {
        const ScreenshotShortcut shortcut{4294967295U, 256, label};
        EXPECT_EQ(ScreenshotShortcut::decode(shortcut.encode()), shortcut);
    }
}

TEST(ScreenshotShortcut, UnreadableJSONIsNothing) {
    for (const char* json : {"[]", "nonsense", R"({"keyCode":25,"modifiers":768})",
                             R"({"keyCode":25,"modifiers":768,"keyLabel":9})",
                             R"({"keyCode":"25","modifiers":768,"keyLabel":"9"})",
                             R"({"keyCode":2.5,"modifiers":768,"keyLabel":"9"})",
                             R"({"keyCode":-1,"modifiers":768,"keyLabel":"9"})",
                             R"({"keyCode":4294967296,"modifiers":768,"keyLabel":"9"})"})
        EXPECT_FALSE(ScreenshotShortcut::decode(json)) << json;
    EXPECT_FALSE(ScreenshotShortcut::decodeList(standard.encode()));
    EXPECT_FALSE(ScreenshotShortcut::decodeList("[" + standard.encode() + ",{}]"));
}

TEST(ScreenshotShortcut, TheInitialSetIsExactlyOne) {
    using Saved = std::optional<QByteArray>;
    const auto list = &ScreenshotShortcut::encodeList;
    const QByteArray labelledOtherwise = R"([{"keyCode":25,"modifiers":768,"keyLabel":"("}])";
    const std::tuple<const char*, Saved, Saved, ScreenshotShortcut> rows[] = {
        {"nothing", {}, {}, standard},
        {"defaultWins", list({commandShiftP, standard}), controlF.encode(), standard},
        {"firstOfOthers", list({commandShiftP, controlF}), {}, commandShiftP},
        {"emptyList", "[]", controlF.encode(), controlF},
        {"brokenList", "[{}]", controlF.encode(), controlF},
        {"brokenBoth", "x", "{}", standard},
        {"otherLabelIsNotTheDefault", labelledOtherwise, {}, {25, 768, u"("_s}}};
    for (const auto& [name, saved, legacy, expected] : rows)
        EXPECT_EQ(ScreenshotShortcut::initialSet(saved, legacy), std::vector{expected}) << name;
}

TEST(ScreenshotShortcut, OnlyChordsThatLeaveTypingAloneAreAccepted) {
    // The label is empty when the key press is refused.
    const std::tuple<KeyCode, ModifierMask, const char*, const char*> rows[] = {
        {Key::escape, 256, "\x1b", ""},
        {Key::f13, 0, "", "Print Screen (F13)"},
        {Key::f13, 0x800, "", "⌥Print Screen (F13)"},
        {0, 0, "a", ""},
        {0, 0xa00, "a", ""},
        {0, 0x1b00, "a", "⌃⌥⇧⌘A"},
        {0, 0x10100, "a", "⌘A"},
        {27, 0x100, "ß", "⌘SS"},
        {0, 256, "", ""},
    };
    for (const auto& [code, modifiers, text, label] : rows) {
        ShortcutKeyEvent event;
        event.keyCode = code;
        event.modifiers = modifiers;
        event.characters = QString::fromUtf8(text);
        const auto shortcut = ScreenshotShortcut::from(event);
        EXPECT_EQ(shortcut ? shortcut->label().toStdString() : "", label) << code;
        event.isFunctionKey = true;
        EXPECT_EQ(ScreenshotShortcut::from(event).has_value(), code == Key::f13);
    }
}

} // namespace

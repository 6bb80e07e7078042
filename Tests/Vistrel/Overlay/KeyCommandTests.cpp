#include "Overlay/KeyEventTranslation.h"
#include "Vistrel/Overlay/OverlayFixture.h"

#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace {

class KeyCommandTests : public OverlayFixture {
protected:
    KeyCommandTests() { select(); }
};

TEST_F(KeyCommandTests, arrowsMoveTheLayerOrTheSelection) {
    addSelected(AnnotationTool::line, {{100, 100}, {140, 120}});
    key(Key::rightArrow);
    key(Key::upArrow, {}, Modifier::shift);
    EXPECT_EQ(layers().front().geometryBounds(), (Rect{101, 110, 40, 20}));
    EXPECT_EQ(undoSteps(), 2U);
    for (int i = 0; i < 30; ++i)
        key(Key::leftArrow, {}, Modifier::shift);
    EXPECT_EQ(layers().front().geometryBounds().x, 50) << "never past the selection's edge";

    document.state.selectedID.reset();
    document.history.clear();
    key(Key::leftArrow, {}, Modifier::shift);
    key(Key::downArrow);
    EXPECT_EQ(document.selection, (Rect{40, 49, 300, 200}));
    for (int i = 0; i < 30; ++i)
        key(Key::rightArrow, {}, Modifier::shift);
    EXPECT_EQ(document.selection, (Rect{100, 49, 300, 200})) << "the size is kept";
    EXPECT_EQ(undoSteps(), 0U);
}

const std::tuple<const char*, const char16_t*, ModifierMask, KeyFocus, bool> keyboardCases[] = {
    {"noKeyOfAnything", u"q", 0, {}, false},
    {"toolKeyHeldWithOption", u"p", Modifier::option, {}, false},
    {"toolKeyHeldWithCommand", u"p", Modifier::command, {}, false},
    {"typedIntoTheField", u"+", 0, {.sizeField = true}, false},
    {"commandFromTheField", u"a", Modifier::command, {.sizeField = true}, true},
    {"larger", u"=", 0, {}, true},
    {"trueMinus", u"−", 0, {}, true},
    {"plainMinus", u"-", Modifier::shift, {}, true},
    {"copyWithControl", u"c", Modifier::control, {}, true},
};

TEST_F(KeyCommandTests, whoHasTheKeyboard) {
    document.tool = AnnotationTool::line;
    for (const auto& [name, characters, modifiers, focus, taken] : keyboardCases)
        EXPECT_EQ(type(characters, modifiers, focus), taken) << name;
    EXPECT_EQ(document.tool, AnnotationTool::line);
    EXPECT_EQ(document.drawingSize(), 2);
    EXPECT_EQ(copied.size(), QSize(400, 300));
    document.tool = AnnotationTool::text;
    press({100, 100});
    ASSERT_TRUE(typed);
    EXPECT_FALSE(key(Key::leftArrow, {}, 0, {.textEditor = true})) << "the caret was at the border";
}

TEST_F(KeyCommandTests, aHeldKeyDoesNotCloseOrCopyAgain) {
    EXPECT_TRUE(editor.keys.keyDown({.keyCode = Key::escape, .characters = {}, .isRepeat = true}, {}));
    EXPECT_EQ(closed, 0);
    EXPECT_TRUE(
        editor.keys.keyDown({.modifiers = Modifier::command, .characters = u"c"_s, .isRepeat = true}, {}));
    EXPECT_TRUE(copied.isNull());
}

const std::tuple<const char*, int, Qt::KeyboardModifiers, quint32, const char16_t*, KeyCode, const char16_t*>
    translationCases[] = {
        {"escapeWithoutScanCode", Qt::Key_Escape, {}, 0, u"\x1b", Key::escape, u"\x1b"},
        {"leftArrow", Qt::Key_Left, {}, 113, u"", Key::leftArrow, u""},
        {"plainLetter", Qt::Key_P, {}, 33, u"p", 35, u"p"},
        {"controlLetterIsNoControlCharacter", Qt::Key_C, Qt::ControlModifier, 54, u"\x03", 8, u"c"},
        {"shiftedCommandLetter", Qt::Key_Z, Qt::MetaModifier | Qt::ShiftModifier, 52, u"Z", 6, u"z"},
        {"otherScriptByPlace", 0x0421, Qt::ControlModifier, 54, u"", 8, u"c"},
        {"otherScriptTypedPlainly", 0x0420, {}, 43, u"р", 4, u"h"},
        {"otherScriptWithShift", 0x0397, Qt::ShiftModifier, 43, u"Η", 4, u"h"},
        {"thirdScript", 0x0631, {}, 55, u"ر", 9, u"v"},
        {"letterWithoutPlace", 0x0425, {}, 34, u"х", 33, u"х"},
        {"anotherLatinLayoutsLetter", Qt::Key_Z, {}, 29, u"z", 16, u"z"},
        {"aSignOfALatinLayout", 0x20ac, {}, 26, u"€", 14, u"€"},
        {"aSignOfAnotherLayout", Qt::Key_Apostrophe, {}, 25, u"'", 13, u"'"},
};

TEST(KeyEventTranslationTests, keysFromTheToolkit) {
    for (const auto& [name, qtKey, modifiers, scanCode, text, code, characters] : translationCases) {
        const QKeyEvent event(QEvent::KeyPress, qtKey, modifiers, scanCode, 0, 0, QString::fromUtf16(text));
        const KeyEvent key = keyEventFrom(event);
        EXPECT_EQ(key.keyCode, code) << name;
        EXPECT_EQ(key.characters, QString::fromUtf16(characters)) << name;
    }
}

} // namespace

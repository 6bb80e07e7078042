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

struct KeyboardCase {
    const char* name;
    const char16_t* characters;
    ModifierMask modifiers;
    KeyFocus focus;
    bool taken;
};
const KeyboardCase keyboardCases[] = {
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
    for (const KeyboardCase& row : keyboardCases)
        EXPECT_EQ(type(row.characters, row.modifiers, row.focus), row.taken) << row.name;
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

struct TranslationCase {
    const char* name;
    int qtKey;
    Qt::KeyboardModifiers modifiers;
    quint32 scanCode;
    const char16_t* text;
    KeyCode code;
    const char16_t* characters;
};

const TranslationCase translationCases[] = {
    {"escapeWithoutScanCode", Qt::Key_Escape, {}, 0, u"\x1b", Key::escape, u"\x1b"},
    {"leftArrow", Qt::Key_Left, {}, 113, u"", Key::leftArrow, u""},
    {"plainLetter", Qt::Key_P, {}, 33, u"p", 35, u"p"},
    {"controlLetterIsNoControlCharacter", Qt::Key_C, Qt::ControlModifier, 54, u"\x03", 8, u"c"},
    {"shiftedCommandLetter", Qt::Key_Z, Qt::MetaModifier | Qt::ShiftModifier, 52, u"Z", 6, u"z"},
    {"otherScriptByPlace", 0x0421, Qt::ControlModifier, 54, u"", 8, u"c"},
    {"otherScriptTypedPlainly", 0x0421, {}, 54, u"с", 8, u"с"},
};

TEST(KeyEventTranslationTests, keysFromTheToolkit) {
    for (const TranslationCase& row : translationCases) {
        const QKeyEvent event(QEvent::KeyPress, row.qtKey, row.modifiers, row.scanCode, 0, 0,
                              QString::fromUtf16(row.text));
        const KeyEvent key = keyEventFrom(event);
        EXPECT_EQ(key.keyCode, row.code) << row.name;
        EXPECT_EQ(key.characters, QString::fromUtf16(row.characters)) << row.name;
    }
}

} // namespace

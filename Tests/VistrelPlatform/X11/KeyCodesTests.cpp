#include "VistrelPlatform/KeyCodes.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <xcb/xcb_keysyms.h>

#include <gtest/gtest.h>

#include <memory>
#include <set>

namespace {

struct KeyCase {
    const char* name;
    KeyCode key;
    xcb_keysym_t symbol;
};

// The symbols are what the server's own US layout has on the key, so both tables are held against it.
const KeyCase keyCases[] = {
    {"a", 0, 'a'},
    {"s", 1, 's'},
    {"q", 12, 'q'},
    {"digitOne", 18, '1'},
    {"digitFour", 21, '4'},
    {"digitFive", 23, '5'},
    {"digitSix", 22, '6'},
    {"digitNine", 25, '9'},
    {"equal", 24, '='},
    {"minus", 27, '-'},
    {"comma", 43, ','},
    {"grave", 50, '`'},
    {"backslash", 42, '\\'},
    {"tab", 48, 0xFF09},
    {"space", 49, ' '},
    {"returnKey", Key::returnKey, 0xFF0D},
    {"keypadEnter", Key::keypadEnter, 0xFF8D},
    {"deleteKey", Key::deleteKey, 0xFF08},
    {"forwardDelete", Key::forwardDelete, 0xFFFF},
    {"escape", Key::escape, 0xFF1B},
    {"leftArrow", Key::leftArrow, 0xFF51},
    {"rightArrow", Key::rightArrow, 0xFF53},
    {"downArrow", Key::downArrow, 0xFF54},
    {"upArrow", Key::upArrow, 0xFF52},
    {"home", 115, 0xFF50},
    {"pageUp", 116, 0xFF55},
    {"end", 119, 0xFF57},
    {"pageDown", 121, 0xFF56},
    {"insert", 114, 0xFF63},
    {"functionOne", 122, 0xFFBE},
    {"functionTwelve", 111, 0xFFC9},
    {"keypadPlus", 69, 0xFFAB},
    {"leftSuper", 55, 0xFFEB},
    {"leftAlt", 58, 0xFFE9},
    {"printScreen", Key::printScreen, 0xFF61},
};

TEST(KeyCodes, KeysCarryTheirSymbols) {
    const std::unique_ptr<xcb_key_symbols_t, decltype(&xcb_key_symbols_free)> symbols(
        xcb_key_symbols_alloc(testSession().client().connection()), &xcb_key_symbols_free);
    for (const KeyCase& row : keyCases) {
        SCOPED_TRACE(row.name);
        const auto scanCode = scanCodeForKeyCode(row.key);
        ASSERT_TRUE(scanCode);
        EXPECT_EQ(xcb_key_symbols_get_keysym(symbols.get(), static_cast<xcb_keycode_t>(*scanCode), 0),
                  row.symbol);
    }
}

TEST(KeyCodes, EveryScanCodeHasItsOwnNumberAndComesBack) {
    std::set<KeyCode> seen;
    for (quint32 scanCode = 9; scanCode <= 255; ++scanCode) {
        const auto key = keyCodeForScanCode(scanCode);
        ASSERT_TRUE(key) << scanCode;
        EXPECT_TRUE(seen.insert(*key).second) << scanCode;
        EXPECT_EQ(scanCodeForKeyCode(*key), scanCode);
    }
    EXPECT_FALSE(keyCodeForScanCode(8));
    EXPECT_FALSE(keyCodeForScanCode(256));
}

TEST(KeyCodes, ForeignNumbersHaveNoKey) {
    // A hole in the table, past it, a named key's second name, and past the last key.
    for (const KeyCode key : {KeyCode{52}, KeyCode{127}, Key::firstUnnamed, Key::firstUnnamed + 30,
                              Key::firstUnnamed + 248, KeyCode{0xFFFFFFFF}})
        EXPECT_FALSE(scanCodeForKeyCode(key)) << key;
}

TEST(KeyCodes, ModifiersBecomeBits) {
    EXPECT_EQ(modifiersFrom(Qt::MetaModifier | Qt::ShiftModifier), 768U);
    EXPECT_EQ(modifiersFrom(Qt::AltModifier | Qt::ControlModifier | Qt::KeypadModifier), 0x1800U);
}

} // namespace

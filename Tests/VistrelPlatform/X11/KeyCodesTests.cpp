#include "VistrelPlatform/KeyCodes.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <xcb/xcb_keysyms.h>

#include <gtest/gtest.h>

#include <memory>
#include <set>

TEST(KeyCodes, KeysCarryTheSymbolsOfTheServersOwnLayout) {
    constexpr KeyCode keys[] = {0,   1,   12,  18,  21,  23,  22,  25, 24,  27,  43,  50,
                                42,  48,  49,  36,  76,  51,  117, 53, 123, 124, 125, 126,
                                115, 116, 119, 121, 114, 122, 111, 69, 55,  58};
    constexpr xcb_keysym_t symbolsOfKeys[] = {
        'a',    's',    'q',    '1',    '4',    '5',    '6',    '9',    '=',    '-',    ',',    '`',
        '\\',   0xFF09, ' ',    0xFF0D, 0xFF8D, 0xFF08, 0xFFFF, 0xFF1B, 0xFF51, 0xFF53, 0xFF54, 0xFF52,
        0xFF50, 0xFF55, 0xFF57, 0xFF56, 0xFF63, 0xFFBE, 0xFFC9, 0xFFAB, 0xFFEB, 0xFFE9};
    static_assert(std::size(keys) == std::size(symbolsOfKeys));
    const std::unique_ptr<xcb_key_symbols_t, decltype(&xcb_key_symbols_free)> symbols(
        xcb_key_symbols_alloc(testSession().client().connection()), &xcb_key_symbols_free);
    for (std::size_t index = 0; index < std::size(keys); ++index) {
        const auto scanCode = static_cast<xcb_keycode_t>(scanCodeForKeyCode(keys[index]).value_or(0));
        EXPECT_EQ(xcb_key_symbols_get_keysym(symbols.get(), scanCode, 0), symbolsOfKeys[index])
            << keys[index];
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
    // A hole in the table, past it, a named key's second name, and past the last key.
    for (const KeyCode key : {KeyCode{52}, KeyCode{127}, Key::firstUnnamed, Key::firstUnnamed + 30,
                              Key::firstUnnamed + 248, KeyCode{0xFFFFFFFF}})
        EXPECT_FALSE(scanCodeForKeyCode(key)) << key;
}

#include "VistrelPlatform/X11/X11Modifiers.h"

#include <xcb/xcb_keysyms.h>

#include <initializer_list>

namespace {

// Key symbols; the protocol fixes their numbers.
constexpr xcb_keysym_t symbolNumLock = 0xFF7F;
constexpr xcb_keysym_t symbolScrollLock = 0xFF14;
constexpr xcb_keysym_t symbolAltLeft = 0xFFE9;
constexpr xcb_keysym_t symbolAltRight = 0xFFEA;
constexpr xcb_keysym_t symbolSuperLeft = 0xFFEB;
constexpr xcb_keysym_t symbolSuperRight = 0xFFEC;

constexpr std::uint16_t allModifierBits = 0xFF;
constexpr int firstFreeModifier = XCB_MAP_INDEX_1;
constexpr int modifierCount = 8;

struct ModifierKeys {
    const xcb_get_modifier_mapping_reply_t& mapping;
    xcb_key_symbols_t* symbols;

    bool produces(xcb_keycode_t key, std::initializer_list<xcb_keysym_t> wanted) const {
        // The first four columns: two groups with two levels each.
        for (int column = 0; column < 4; ++column)
            for (const xcb_keysym_t symbol : wanted)
                if (xcb_key_symbols_get_keysym(symbols, key, column) == symbol)
                    return true;
        return false;
    }

    /// The lowest of Mod1 to Mod5 that a key with one of the symbols sets.
    std::uint16_t bit(std::initializer_list<xcb_keysym_t> wanted) const {
        const xcb_keycode_t* keys = xcb_get_modifier_mapping_keycodes(&mapping);
        const int perModifier = mapping.keycodes_per_modifier;
        for (int modifier = firstFreeModifier; modifier < modifierCount; ++modifier) {
            for (int index = 0; index < perModifier; ++index) {
                const xcb_keycode_t key = keys[modifier * perModifier + index];
                if (key != XCB_NO_SYMBOL && produces(key, wanted))
                    return static_cast<std::uint16_t>(1U << modifier);
            }
        }
        return 0;
    }
};

} // namespace

X11Modifiers X11Modifiers::read(xcb_connection_t* connection) {
    X11Modifiers result;
    const auto cookie = xcb_get_modifier_mapping(connection);
    // Asks for the symbols, too, so that both answers come at once.
    const std::unique_ptr<xcb_key_symbols_t, decltype(&xcb_key_symbols_free)> symbols(
        xcb_key_symbols_alloc(connection), &xcb_key_symbols_free);
    const auto mapping = xcbReply<xcb_get_modifier_mapping_reply>(connection, cookie);
    if (!mapping || !symbols)
        return result;
    const ModifierKeys keys{*mapping, symbols.get()};
    result.command = keys.bit({symbolSuperLeft, symbolSuperRight});
    result.option = keys.bit({symbolAltLeft, symbolAltRight});
    result.numLock = keys.bit({symbolNumLock});
    result.scrollLock = keys.bit({symbolScrollLock});
    return result;
}

std::uint16_t X11Modifiers::state(ModifierMask modifiers) const {
    unsigned bits = 0;
    if (modifiers & Modifier::command)
        bits |= command;
    if (modifiers & Modifier::option)
        bits |= option;
    if (modifiers & Modifier::shift)
        bits |= XCB_MOD_MASK_SHIFT;
    if (modifiers & Modifier::control)
        bits |= XCB_MOD_MASK_CONTROL;
    return static_cast<std::uint16_t>(bits);
}

ModifierMask X11Modifiers::modifiers(std::uint16_t state) const {
    ModifierMask mask = 0;
    if (state & command)
        mask |= Modifier::command;
    if (state & option)
        mask |= Modifier::option;
    if (state & XCB_MOD_MASK_SHIFT)
        mask |= Modifier::shift;
    if (state & XCB_MOD_MASK_CONTROL)
        mask |= Modifier::control;
    return mask;
}

bool X11Modifiers::matches(std::uint16_t state, ModifierMask modifiers) const {
    const unsigned locks = XCB_MOD_MASK_LOCK | numLock | scrollLock;
    return canProduce(modifiers) && (state & allModifierBits & ~locks) == this->state(modifiers);
}

std::vector<std::uint16_t> X11Modifiers::lockVariants() const {
    std::vector<std::uint16_t> variants{0};
    for (const auto lock : {static_cast<std::uint16_t>(XCB_MOD_MASK_LOCK), numLock, scrollLock}) {
        if (lock == 0)
            continue;
        const std::size_t count = variants.size();
        for (std::size_t index = 0; index < count; ++index)
            variants.push_back(static_cast<std::uint16_t>(variants[index] | lock));
    }
    return variants;
}

bool X11Modifiers::canProduce(ModifierMask modifiers) const {
    return this->modifiers(state(modifiers)) == modifiers;
}

#include "Desktop/Fixture/XTestInput.h"

#include "VistrelPlatform/KeyCodes.h"

#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

#include <array>
#include <memory>
#include <utility>

namespace {

/// The left-hand modifier keys, in the order a user presses them.
constexpr std::array<std::pair<ModifierMask, KeyCode>, 4> modifierKeys{{
    {Modifier::control, 59},
    {Modifier::option, 58},
    {Modifier::shift, 56},
    {Modifier::command, 55},
}};

std::uint8_t scanCode(KeyCode key) {
    const auto code = scanCodeForKeyCode(key);
    if (!code)
        qFatal("no key has the number %u", key);
    return static_cast<std::uint8_t>(*code);
}

} // namespace

XTestInput::XTestInput(const QByteArray& displayName) : client(displayName) {}

void XTestInput::send(std::uint8_t type, std::uint8_t detail, QPoint position) {
    xcb_test_fake_input(client.connection(), type, detail, XCB_CURRENT_TIME, client.root(),
                        static_cast<std::int16_t>(position.x()), static_cast<std::int16_t>(position.y()), 0);
    client.synchronize();
}

void XTestInput::pressKey(KeyCode key) {
    send(XCB_KEY_PRESS, scanCode(key));
}

void XTestInput::releaseKey(KeyCode key) {
    send(XCB_KEY_RELEASE, scanCode(key));
}

void XTestInput::pressModifiers(ModifierMask modifiers) {
    for (const auto& [mask, key] : modifierKeys)
        if (modifiers & mask)
            pressKey(key);
}

void XTestInput::releaseModifiers(ModifierMask modifiers) {
    for (auto row = modifierKeys.rbegin(); row != modifierKeys.rend(); ++row)
        if (modifiers & row->first)
            releaseKey(row->second);
}

void XTestInput::chord(ModifierMask modifiers, KeyCode key) {
    pressModifiers(modifiers);
    pressKey(key);
    releaseKey(key);
    releaseModifiers(modifiers);
}

void XTestInput::type(const QString& text) {
    const std::unique_ptr<xcb_key_symbols_t, decltype(&xcb_key_symbols_free)> symbols(
        xcb_key_symbols_alloc(client.connection()), &xcb_key_symbols_free);
    for (const QChar character : text) {
        // Latin-1 key symbols are numbered like their characters.
        const xcb_keysym_t wanted = character.unicode();
        for (unsigned code = 9; code <= 255; ++code) {
            const auto keyCode = static_cast<xcb_keycode_t>(code);
            const bool plain = xcb_key_symbols_get_keysym(symbols.get(), keyCode, 0) == wanted;
            const bool shifted = xcb_key_symbols_get_keysym(symbols.get(), keyCode, 1) == wanted;
            if (!plain && !shifted)
                continue;
            if (!plain)
                pressModifiers(Modifier::shift);
            send(XCB_KEY_PRESS, keyCode);
            send(XCB_KEY_RELEASE, keyCode);
            if (!plain)
                releaseModifiers(Modifier::shift);
            break;
        }
    }
}

void XTestInput::movePointer(QPoint position) {
    send(XCB_MOTION_NOTIFY, 0, position);
}

void XTestInput::pressButton(int button) {
    send(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
}

void XTestInput::releaseButton(int button) {
    send(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
}

void XTestInput::click(QPoint position, int button) {
    movePointer(position);
    pressButton(button);
    releaseButton(button);
}

void XTestInput::doubleClick(QPoint position) {
    click(position);
    click(position);
}

void XTestInput::drag(QPoint from, QPoint to, int steps) {
    movePointer(from);
    pressButton();
    for (int step = 1; step <= steps; ++step)
        movePointer(from + (to - from) * step / steps);
    releaseButton();
}

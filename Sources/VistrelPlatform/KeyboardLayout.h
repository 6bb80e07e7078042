#pragma once

#include "VistrelPlatform/Keyboard.h"

#include <QString>

#include <optional>

/// The key that types a character, and whether Shift must be held for it.
struct TypingKey {
    KeyCode key = 0;
    bool shift = false;

    friend bool operator==(const TypingKey&, const TypingKey&) = default;
};

/// Which key types what in the keyboard layout in force. Main thread.
class KeyboardLayout {
public:
    KeyboardLayout() = default;
    KeyboardLayout(const KeyboardLayout&) = delete;
    KeyboardLayout& operator=(const KeyboardLayout&) = delete;
    virtual ~KeyboardLayout() = default;

    virtual std::optional<TypingKey> keyTyping(char32_t character) const = 0;
    /// With no modifier held; empty for a key that types nothing.
    virtual QString textOf(KeyCode key) const = 0;
};

/// For a session that does not tell its layout.
class USKeyboardLayout final : public KeyboardLayout {
public:
    std::optional<TypingKey> keyTyping(char32_t character) const override;
    QString textOf(KeyCode key) const override;
};

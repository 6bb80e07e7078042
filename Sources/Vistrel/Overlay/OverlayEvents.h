#pragma once

#include "VistrelCore/Geometry.h"
#include "VistrelPlatform/Keyboard.h"

#include <QString>

/// What the pointer did, in view points (y up).
struct PointerEvent {
    Point location;
    int clickCount = 1;
    ModifierMask modifiers = 0;
};

/// A key press by its place on the keyboard and by what it types without Control, Option or Command.
struct KeyEvent {
    static constexpr KeyCode unknownKey = 0xffff;

    KeyCode keyCode = unknownKey;
    ModifierMask modifiers = 0;
    QString characters;
    /// Sent again because the key is held down.
    bool isRepeat = false;
};

/// Which control of the overlay has the keyboard, as far as the rules for keys ask.
struct KeyFocus {
    bool textEditor = false;
    bool sizeField = false;
};

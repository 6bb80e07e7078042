#pragma once

#include "Desktop/Fixture/XClient.h"
#include "VistrelPlatform/Keyboard.h"

/// Keyboard and pointer of the session's user, through XTEST. Positions in device pixels on the root.
/// Every call returns when the server has handled it.
class XTestInput {
public:
    explicit XTestInput(const QByteArray& displayName);

    void pressKey(KeyCode key);
    void releaseKey(KeyCode key);
    /// Presses the modifiers and the key, then lets all go in the opposite order.
    void chord(ModifierMask modifiers, KeyCode key);
    void key(KeyCode key) { chord(0, key); }
    void pressModifiers(ModifierMask modifiers);
    void releaseModifiers(ModifierMask modifiers);
    /// Latin letters, digits and signs that the keyboard can produce alone or with Shift.
    void type(const QString& text);

    void movePointer(QPoint position);
    /// 1 left, 2 middle, 3 right, 4 and 5 the wheel.
    void pressButton(int button = 1);
    void releaseButton(int button = 1);
    void click(QPoint position, int button = 1);
    void doubleClick(QPoint position);
    /// Press at `from`, move in `steps`, release at `to`.
    void drag(QPoint from, QPoint to, int steps = 8);

private:
    void send(std::uint8_t type, std::uint8_t detail, QPoint position = {});

    XClient client;
};

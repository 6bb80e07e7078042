#pragma once

#include "VistrelPlatform/KeyboardLayout.h"

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <vector>

/// The layout of the X keyboard, in the group that is active: what the user's keys type at present. Read
/// when it is first asked for and again after a change. Main thread; needs the xcb platform.
class X11KeyboardLayout final : public KeyboardLayout, private QAbstractNativeEventFilter {
public:
    X11KeyboardLayout();
    ~X11KeyboardLayout() override;

    std::optional<TypingKey> keyTyping(char32_t character) const override;
    QString textOf(KeyCode key) const override;

private:
    struct Sign {
        char32_t character = 0;
        KeyCode key = 0;
        std::uint32_t group = 0;
        bool shift = false;
    };

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    const std::vector<Sign>& current() const;
    void read() const;

    std::uint8_t keyboardEvent = 0;
    // What the keys type, in the order in which a key is looked for.
    mutable std::vector<Sign> signs;
    mutable std::uint32_t activeGroup = 0;
    mutable bool outdated = true;
};

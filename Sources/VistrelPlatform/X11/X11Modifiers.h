#pragma once

#include "VistrelPlatform/Keyboard.h"
#include "VistrelPlatform/X11/Xcb.h"

#include <cstdint>
#include <vector>

/// Which of the server's eight modifier bits Super, Alt and the locks use at present: the keyboard
/// configuration decides that, not the protocol. A value.
class X11Modifiers {
public:
    X11Modifiers() = default;
    static X11Modifiers read(xcb_connection_t* connection);

    /// The bits of a chord; zero for a modifier that no key produces.
    std::uint16_t state(ModifierMask modifiers) const;
    /// The chord's modifiers in an event's state. Locks and pointer buttons do not count.
    ModifierMask modifiers(std::uint16_t state) const;
    /// Whether exactly these modifiers are held, whatever the locks.
    bool matches(std::uint16_t state, ModifierMask modifiers) const;
    /// Every combination of the locks, none included: what a grab must be repeated for.
    std::vector<std::uint16_t> lockVariants() const;
    /// Whether the keyboard can produce all of the modifiers.
    bool canProduce(ModifierMask modifiers) const;

    friend bool operator==(const X11Modifiers&, const X11Modifiers&) = default;

private:
    std::uint16_t command = 0;
    std::uint16_t option = 0;
    std::uint16_t numLock = 0;
    std::uint16_t scrollLock = 0;
};

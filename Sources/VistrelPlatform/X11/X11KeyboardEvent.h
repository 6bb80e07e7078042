#pragma once

#include <cstddef>
#include <cstdint>

/// An event of the keyboard extension, which the toolkit asks for on its connection. What follows `device`
/// is of `stateKind` only.
struct X11KeyboardEvent {
    static constexpr std::uint8_t newKeyboardKind = 0;
    static constexpr std::uint8_t keyMapKind = 1;
    static constexpr std::uint8_t stateKind = 2;

    std::uint8_t type;
    std::uint8_t kind;
    std::uint16_t sequence;
    std::uint32_t time;
    std::uint8_t device;
    std::uint8_t modifiers;
    std::uint8_t baseModifiers;
    std::uint8_t latchedModifiers;
    std::uint8_t lockedModifiers;
    std::uint8_t group;
    std::int16_t baseGroup;
    std::int16_t latchedGroup;
    std::uint8_t lockedGroup;
    std::uint8_t compatibleModifiers;
    /// What the server itself compares with the modifiers of a grab.
    std::uint8_t grabModifiers;

    bool changesMapping() const { return kind == newKeyboardKind || kind == keyMapKind; }
};
static_assert(offsetof(X11KeyboardEvent, grabModifiers) == 20, "as the protocol lays it out");

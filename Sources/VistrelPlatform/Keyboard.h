#pragma once

#include <cstdint>

/// Key numbers and modifier bits as they are stored and compared; the window system's own are mapped
/// to them at its border.
using KeyCode = std::uint32_t;
using ModifierMask = std::uint32_t;

namespace Modifier {
inline constexpr ModifierMask command = 0x100; // Super
inline constexpr ModifierMask shift = 0x200;
inline constexpr ModifierMask option = 0x800; // Alt
inline constexpr ModifierMask control = 0x1000;
inline constexpr ModifierMask all = command | shift | option | control;
} // namespace Modifier

namespace Key {
inline constexpr KeyCode returnKey = 36;
inline constexpr KeyCode deleteKey = 51;
inline constexpr KeyCode escape = 53;
inline constexpr KeyCode keypadEnter = 76;
inline constexpr KeyCode f13 = 105;
inline constexpr KeyCode forwardDelete = 117;
inline constexpr KeyCode leftArrow = 123;
inline constexpr KeyCode rightArrow = 124;
inline constexpr KeyCode downArrow = 125;
inline constexpr KeyCode upArrow = 126;
/// Keys without a number of their own are this plus the kernel's key code.
inline constexpr KeyCode firstUnnamed = 0x1000;
/// The Print Screen key of a PC keyboard (F13 is a key of its own).
inline constexpr KeyCode printScreen = firstUnnamed + 99;
} // namespace Key

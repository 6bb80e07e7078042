#pragma once

#include "VistrelPlatform/Keyboard.h"

#include <Qt>
#include <QtGlobal>

#include <optional>

/// Between the stored key numbers and the scan codes of this system: the kernel's (evdev) key code plus 8,
/// which is what `QKeyEvent::nativeScanCode()` carries. A key that has no stored number of its own gets
/// `Key::firstUnnamed` plus its kernel code, so that every key of a keyboard can be stored.

/// Absent for codes below 9, which no key has.
std::optional<KeyCode> keyCodeForScanCode(quint32 scanCode);
/// Absent when no key of this system has the number.
std::optional<quint32> scanCodeForKeyCode(KeyCode key);

/// Super counts as command, Alt as option.
ModifierMask modifiersFrom(Qt::KeyboardModifiers modifiers);

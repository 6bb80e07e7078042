#pragma once

#include "VistrelPlatform/KeyboardLayout.h"
#include "VistrelPlatform/SystemShortcuts.h"

#include <optional>

/// Chords as desktops write them down. Nothing for what is no chord, or has a key that cannot be named.
namespace ShortcutNotation {

/// "<Super><Shift>9", "Print", "<Primary>plus", "0x6b" (a scan code).
std::optional<SystemShortcut> fromAccelerator(const QString& text, const KeyboardLayout& layout);

/// The toolkit's key with its modifiers in one number.
std::optional<SystemShortcut> fromCombinedKey(int combined, const KeyboardLayout& layout);

} // namespace ShortcutNotation

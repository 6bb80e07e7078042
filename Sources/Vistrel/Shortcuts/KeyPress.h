#pragma once

#include "Shortcuts/ScreenshotShortcut.h"

#include <functional>
#include <optional>

class QKeyEvent;

/// A pressed key of the toolkit as the recorder judges it; nothing for a key that is itself a modifier.
/// `unmodifiedText` may be empty; without it a shifted digit or sign is taken from a US keyboard.
std::optional<ShortcutKeyEvent> shortcutKeyEvent(const QKeyEvent& press,
                                                 const std::function<QString(KeyCode)>& unmodifiedText);

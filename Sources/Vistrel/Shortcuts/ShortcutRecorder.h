#pragma once

#include "Shortcuts/ScreenshotShortcut.h"

#include <functional>

class QWidget;
class RecorderButton;

/// What a page says about the one control that records a shortcut: where the shortcut goes, and what
/// the control needs from outside. A value; empty callbacks are left out.
struct ShortcutRecorder {
    std::function<void(const ScreenshotShortcut&)> onChange;
    /// Called with true while key presses go to the recorder, when hot keys of ours must let them
    /// through, and with false afterwards.
    std::function<void(bool)> onListening;
    /// What a key types with no modifier held, from the keyboard layout.
    std::function<QString(KeyCode)> unmodifiedText;

    RecorderButton* makeButton(QWidget* parent) const;
    /// The newest callbacks, for a page that was built again.
    void update(RecorderButton& button) const;
};

#pragma once

#include "Shortcuts/ScreenshotShortcut.h"
#include "VistrelPlatform/HotKeyBackend.h"
#include "VistrelPlatform/Result.h"

/// Why a chord could not become a global hot key. A value.
struct ShortcutRegistrationError {
    enum class Reason {
        /// The window system refused it with `status`.
        unavailable,
        /// The desktop uses it.
        systemConflict,
        /// What the desktop uses could not be read.
        cannotInspectSystemShortcuts
    };

    Reason reason = Reason::unavailable;
    HotKeyStatus status = 0;

    friend bool operator==(const ShortcutRegistrationError&, const ShortcutRegistrationError&) = default;
    QString description() const;
};

/// The shortcut that failed with its reason; the description is what the user reads.
struct ShortcutRegistrationFailure {
    static inline const QString domain = QStringLiteral("com.orvane.Vistrel.shortcut");

    ScreenshotShortcut shortcut;
    ShortcutRegistrationError cause;

    friend bool operator==(const ShortcutRegistrationFailure&, const ShortcutRegistrationFailure&) = default;
    QString description() const;
    /// The code is the window system's status, or 1 for a conflict and 2 for an unreadable table.
    Error error() const;
};

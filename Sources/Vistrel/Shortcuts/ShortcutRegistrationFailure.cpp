#include "Shortcuts/ShortcutRegistrationFailure.h"

using Reason = ShortcutRegistrationError::Reason;

QString ShortcutRegistrationError::description() const {
    switch (reason) {
    case Reason::unavailable:
        break;
    case Reason::systemConflict:
        return QStringLiteral(
            "This shortcut is enabled in macOS Keyboard Shortcuts. Change or disable it there first.");
    case Reason::cannotInspectSystemShortcuts:
        return QStringLiteral("Vistrel couldn't check macOS shortcuts. Please try again.");
    }
    return QStringLiteral("This shortcut could not be registered. It may be in use by another app. Choose a "
                          "different shortcut.");
}

QString ShortcutRegistrationFailure::description() const {
    const QString label = shortcut.label();
    if (cause.reason != Reason::unavailable)
        return label + QStringLiteral(": ") + cause.description();
    if (cause.status == hotKeyExists)
        return label +
               QStringLiteral(" is already registered by another application. Open that app's Settings or "
                              "Preferences → Shortcuts / Hotkeys, change or disable this combination, then "
                              "try again. You can also quit that app or choose another shortcut in Vistrel.");
    return label + QStringLiteral(" could not be registered (macOS error ") + QString::number(cause.status) +
           QStringLiteral("). It may be in use by another app. Choose another shortcut or try again.");
}

Error ShortcutRegistrationFailure::error() const {
    const int code = cause.reason == Reason::unavailable ? cause.status : static_cast<int>(cause.reason);
    return {domain, code, description()};
}

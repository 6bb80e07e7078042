#include "Shortcuts/KeyPress.h"

#include "VistrelPlatform/KeyCodes.h"
#include "VistrelPlatform/KeyboardLayout.h"

#include <QKeyEvent>

#include <algorithm>
#include <array>

namespace {

bool isModifierKey(int key) {
    static constexpr std::array keys = {
        Qt::Key_Shift,   Qt::Key_Control,   Qt::Key_Meta,       Qt::Key_Alt,        Qt::Key_AltGr,
        Qt::Key_Super_L, Qt::Key_Super_R,   Qt::Key_Hyper_L,    Qt::Key_Hyper_R,    Qt::Key_CapsLock,
        Qt::Key_NumLock, Qt::Key_Multi_key, Qt::Key_ScrollLock, Qt::Key_Mode_switch};
    return std::ranges::find(keys, key) != keys.end();
}

/// Keys that type something invisible are known by their names.
QString nameOfTypingKey(int key) {
    switch (key) {
    case Qt::Key_Space:
        return QStringLiteral("Space");
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return QStringLiteral("Tab");
    case Qt::Key_Return:
        return QStringLiteral("Return");
    case Qt::Key_Enter:
        return QStringLiteral("Enter");
    case Qt::Key_Backspace:
        return QStringLiteral("Backspace");
    default:
        return {};
    }
}

/// What the key's own number says when nobody knows the layout: letters and digits are themselves.
std::optional<QString> textOfKey(const QKeyEvent& press, KeyCode keyCode) {
    const int key = press.key();
    if (key <= Qt::Key_Space || key >= Qt::Key_Escape)
        return std::nullopt;
    const auto character = static_cast<char32_t>(key);
    const QString own = QString::fromUcs4(&character, 1);
    if (QChar::isLetterOrNumber(character) || !press.modifiers().testFlag(Qt::ShiftModifier))
        return own;
    const QString sign = USKeyboardLayout().textOf(keyCode);
    return sign.isEmpty() ? own : sign;
}

} // namespace

std::optional<ShortcutKeyEvent> shortcutKeyEvent(const QKeyEvent& press,
                                                 const std::function<QString(KeyCode)>& unmodifiedText) {
    const int key = press.key();
    if (isModifierKey(key))
        return std::nullopt;
    ShortcutKeyEvent event;
    // A key that the user has turned into another one counts as that one.
    if (key == Qt::Key_Escape)
        event.keyCode = Key::escape;
    else if (const auto keyCode = keyCodeForScanCode(press.nativeScanCode()))
        event.keyCode = *keyCode;
    else
        return std::nullopt;
    event.modifiers = modifiersFrom(press.modifiers());
    event.isPrintScreen = key == Qt::Key_Print || key == Qt::Key_SysReq;
    const QString name = nameOfTypingKey(key);
    event.isFunctionKey = key >= Qt::Key_Escape && name.isEmpty();
    if (!name.isEmpty()) {
        event.characters = name;
    } else if (!event.isFunctionKey) {
        const QString typed = unmodifiedText ? unmodifiedText(event.keyCode) : QString();
        event.characters = typed.isEmpty() ? textOfKey(press, event.keyCode) : typed;
    }
    return event;
}

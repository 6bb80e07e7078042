#include "Overlay/KeyEventTranslation.h"

#include "VistrelPlatform/KeyCodes.h"

#include <QKeyEvent>

namespace {

struct NamedKey {
    int qtKey;
    KeyCode code;
};
constexpr NamedKey namedKeys[] = {
    {Qt::Key_Escape, Key::escape},        {Qt::Key_Backspace, Key::deleteKey},
    {Qt::Key_Delete, Key::forwardDelete}, {Qt::Key_Return, Key::returnKey},
    {Qt::Key_Enter, Key::keypadEnter},    {Qt::Key_Left, Key::leftArrow},
    {Qt::Key_Right, Key::rightArrow},     {Qt::Key_Down, Key::downArrow},
    {Qt::Key_Up, Key::upArrow},
};

/// Places of the letters that commands use, for layouts that type other scripts.
struct LetterKey {
    KeyCode code;
    QChar letter;
};
constexpr LetterKey letterKeys[] = {{0, u'a'}, {1, u's'}, {6, u'z'}, {8, u'c'}};

KeyCode keyCode(const QKeyEvent& event) {
    // What the key means wins over where it is, so that a remapped Escape still is one.
    for (const NamedKey& named : namedKeys) {
        if (named.qtKey == event.key())
            return named.code;
    }
    if (event.nativeScanCode() == 0)
        return KeyEvent::unknownKey;
    return keyCodeForScanCode(event.nativeScanCode()).value_or(KeyEvent::unknownKey);
}

QString commandCharacters(const QKeyEvent& event, KeyCode code) {
    constexpr int lastAscii = 0x7e;
    if (event.key() >= Qt::Key_Space && event.key() <= lastAscii)
        return QString(QChar(event.key())).toLower();
    for (const LetterKey& letter : letterKeys) {
        if (letter.code == code)
            return letter.letter;
    }
    return {};
}

} // namespace

KeyEvent keyEventFrom(const QKeyEvent& event) {
    const KeyCode code = keyCode(event);
    const bool isCommand = event.modifiers() & (Qt::ControlModifier | Qt::MetaModifier);
    return {.keyCode = code,
            .modifiers = modifiersFrom(event.modifiers()),
            .characters = isCommand ? commandCharacters(event, code) : event.text(),
            .isRepeat = event.isAutoRepeat()};
}

#include "Overlay/KeyEventTranslation.h"

#include "VistrelPlatform/KeyCodes.h"

#include <QKeyEvent>

#include <algorithm>

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

/// Places of the letters that tools and commands use, for layouts that type other scripts.
struct LetterKey {
    KeyCode code;
    QChar letter;
};
constexpr LetterKey letterKeys[] = {
    {0, u'a'},  {1, u's'},  {4, u'h'},  {6, u'z'},  {7, u'x'},  {8, u'c'},  {9, u'v'},
    {11, u'b'}, {14, u'e'}, {15, u'r'}, {17, u't'}, {35, u'p'}, {37, u'l'},
};

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

QString letterAt(KeyCode code) {
    const auto* found = std::ranges::find(letterKeys, code, &LetterKey::code);
    return found == std::end(letterKeys) ? QString() : QString(found->letter);
}

/// Letters and vowel signs of another script; what Latin layouts type beside letters is common to all.
bool isOtherScript(const QString& text) {
    return std::ranges::any_of(text, [](QChar typed) {
        const QChar::Script script = typed.script();
        return script > QChar::Script_Latin;
    });
}

QString plainCharacters(const QKeyEvent& event, KeyCode code) {
    const QString typed = event.text();
    const QString letter = isOtherScript(typed) ? letterAt(code) : QString();
    return letter.isEmpty() ? typed : letter;
}

QString commandCharacters(const QKeyEvent& event, KeyCode code) {
    constexpr int lastAscii = 0x7e;
    if (event.key() >= Qt::Key_Space && event.key() <= lastAscii)
        return QString(QChar(event.key())).toLower();
    return letterAt(code);
}

} // namespace

KeyEvent keyEventFrom(const QKeyEvent& event) {
    const KeyCode code = keyCode(event);
    const bool isCommand = event.modifiers() & (Qt::ControlModifier | Qt::MetaModifier);
    return {.keyCode = code,
            .modifiers = modifiersFrom(event.modifiers()),
            .characters = isCommand ? commandCharacters(event, code) : plainCharacters(event, code),
            .isRepeat = event.isAutoRepeat()};
}

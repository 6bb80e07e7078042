#include "VistrelPlatform/Freedesktop/ShortcutNotation.h"

#include "VistrelPlatform/KeyCodes.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace {

/// Keys that type nothing, or nothing that could be looked up in a layout.
struct NamedKey {
    const char* name;
    Qt::Key toolkitKey;
    KeyCode key;
};

constexpr std::array namedKeys = {
    NamedKey{"Print", Qt::Key_Print, Key::printScreen},
    NamedKey{"Sys_Req", Qt::Key_SysReq, Key::printScreen},
    NamedKey{"Return", Qt::Key_Return, Key::returnKey},
    NamedKey{"KP_Enter", Qt::Key_Enter, Key::keypadEnter},
    NamedKey{"Tab", Qt::Key_Tab, 48},
    NamedKey{"ISO_Left_Tab", Qt::Key_Backtab, 48},
    NamedKey{"BackSpace", Qt::Key_Backspace, Key::deleteKey},
    NamedKey{"Escape", Qt::Key_Escape, Key::escape},
    NamedKey{"Delete", Qt::Key_Delete, Key::forwardDelete},
    NamedKey{"Insert", Qt::Key_Insert, 114},
    NamedKey{"Home", Qt::Key_Home, 115},
    NamedKey{"End", Qt::Key_End, 119},
    NamedKey{"Page_Up", Qt::Key_PageUp, 116},
    NamedKey{"Prior", Qt::Key_PageUp, 116},
    NamedKey{"Page_Down", Qt::Key_PageDown, 121},
    NamedKey{"Next", Qt::Key_PageDown, 121},
    NamedKey{"Left", Qt::Key_Left, Key::leftArrow},
    NamedKey{"Right", Qt::Key_Right, Key::rightArrow},
    NamedKey{"Up", Qt::Key_Up, Key::upArrow},
    NamedKey{"Down", Qt::Key_Down, Key::downArrow},
    NamedKey{"Menu", Qt::Key_Menu, 110},
    NamedKey{"F1", Qt::Key_F1, 122},
    NamedKey{"F2", Qt::Key_F2, 120},
    NamedKey{"F3", Qt::Key_F3, 99},
    NamedKey{"F4", Qt::Key_F4, 118},
    NamedKey{"F5", Qt::Key_F5, 96},
    NamedKey{"F6", Qt::Key_F6, 97},
    NamedKey{"F7", Qt::Key_F7, 98},
    NamedKey{"F8", Qt::Key_F8, 100},
    NamedKey{"F9", Qt::Key_F9, 101},
    NamedKey{"F10", Qt::Key_F10, 109},
    NamedKey{"F11", Qt::Key_F11, 103},
    NamedKey{"F12", Qt::Key_F12, 111},
    NamedKey{"F13", Qt::Key_F13, Key::f13},
    NamedKey{"F14", Qt::Key_F14, 107},
    NamedKey{"F15", Qt::Key_F15, 113},
    NamedKey{"F16", Qt::Key_F16, 106},
    NamedKey{"KP_0", Qt::Key_unknown, 82},
    NamedKey{"KP_1", Qt::Key_unknown, 83},
    NamedKey{"KP_2", Qt::Key_unknown, 84},
    NamedKey{"KP_3", Qt::Key_unknown, 85},
    NamedKey{"KP_4", Qt::Key_unknown, 86},
    NamedKey{"KP_5", Qt::Key_unknown, 87},
    NamedKey{"KP_6", Qt::Key_unknown, 88},
    NamedKey{"KP_7", Qt::Key_unknown, 89},
    NamedKey{"KP_8", Qt::Key_unknown, 91},
    NamedKey{"KP_9", Qt::Key_unknown, 92},
    NamedKey{"KP_Add", Qt::Key_unknown, 69},
    NamedKey{"KP_Subtract", Qt::Key_unknown, 78},
    NamedKey{"KP_Multiply", Qt::Key_unknown, 67},
    NamedKey{"KP_Divide", Qt::Key_unknown, 75},
    NamedKey{"XF86AudioRaiseVolume", Qt::Key_VolumeUp, 72},
    NamedKey{"XF86AudioLowerVolume", Qt::Key_VolumeDown, 73},
    NamedKey{"XF86AudioMute", Qt::Key_VolumeMute, 74},
    NamedKey{"Above_Tab", Qt::Key_unknown, 50},
};

struct NamedSign {
    const char* name;
    char16_t sign;
};

constexpr std::array namedSigns = {
    NamedSign{"space", u' '},      NamedSign{"exclam", u'!'},       NamedSign{"quotedbl", u'"'},
    NamedSign{"numbersign", u'#'}, NamedSign{"dollar", u'$'},       NamedSign{"percent", u'%'},
    NamedSign{"ampersand", u'&'},  NamedSign{"apostrophe", u'\''},  NamedSign{"parenleft", u'('},
    NamedSign{"parenright", u')'}, NamedSign{"asterisk", u'*'},     NamedSign{"plus", u'+'},
    NamedSign{"comma", u','},      NamedSign{"minus", u'-'},        NamedSign{"period", u'.'},
    NamedSign{"slash", u'/'},      NamedSign{"colon", u':'},        NamedSign{"semicolon", u';'},
    NamedSign{"less", u'<'},       NamedSign{"equal", u'='},        NamedSign{"greater", u'>'},
    NamedSign{"question", u'?'},   NamedSign{"at", u'@'},           NamedSign{"bracketleft", u'['},
    NamedSign{"backslash", u'\\'}, NamedSign{"bracketright", u']'}, NamedSign{"asciicircum", u'^'},
    NamedSign{"underscore", u'_'}, NamedSign{"grave", u'`'},        NamedSign{"braceleft", u'{'},
    NamedSign{"bar", u'|'},        NamedSign{"braceright", u'}'},   NamedSign{"asciitilde", u'~'},
    NamedSign{"adiaeresis", u'ä'}, NamedSign{"odiaeresis", u'ö'},   NamedSign{"udiaeresis", u'ü'},
    NamedSign{"ssharp", u'ß'},     NamedSign{"eacute", u'é'},       NamedSign{"egrave", u'è'},
    NamedSign{"agrave", u'à'},     NamedSign{"ccedilla", u'ç'},     NamedSign{"aring", u'å'},
    NamedSign{"ae", u'æ'},         NamedSign{"oslash", u'ø'},       NamedSign{"ntilde", u'ñ'},
};

std::optional<ModifierMask> modifierNamed(const QString& name) {
    static const QHash<QString, ModifierMask> masks = {
        {QStringLiteral("shift"), Modifier::shift},
        {QStringLiteral("shft"), Modifier::shift},
        {QStringLiteral("control"), Modifier::control},
        {QStringLiteral("ctrl"), Modifier::control},
        {QStringLiteral("ctl"), Modifier::control},
        {QStringLiteral("primary"), Modifier::control},
        {QStringLiteral("alt"), Modifier::option},
        {QStringLiteral("mod1"), Modifier::option},
        // The usual keymaps put Meta on the Alt keys and Hyper on the Super keys.
        {QStringLiteral("meta"), Modifier::option},
        {QStringLiteral("super"), Modifier::command},
        {QStringLiteral("mod4"), Modifier::command},
        {QStringLiteral("hyper"), Modifier::command},
        {QStringLiteral("release"), 0},
    };
    const auto found = masks.constFind(name.toLower());
    return found == masks.constEnd() ? std::nullopt : std::optional(*found);
}

std::optional<TypingKey> keyForSign(char32_t sign, const KeyboardLayout& layout) {
    // Upper and lower case are the same key; the desktop says Shift when it means Shift.
    const char32_t lower = QChar::toLower(sign);
    if (const auto key = layout.keyTyping(lower))
        return key;
    return USKeyboardLayout().keyTyping(lower);
}

std::optional<TypingKey> keyNamed(const QString& name, const KeyboardLayout& layout) {
    for (const NamedKey& row : namedKeys) {
        if (name.compare(QLatin1StringView(row.name), Qt::CaseInsensitive) == 0)
            return TypingKey{row.key, false};
    }
    for (const NamedSign& row : namedSigns) {
        if (name == QLatin1StringView(row.name))
            return keyForSign(row.sign, layout);
    }
    if (name.startsWith(QLatin1StringView("0x"))) {
        const auto key = keyCodeForScanCode(name.toUInt(nullptr, 16));
        return key ? std::optional(TypingKey{*key, false}) : std::nullopt;
    }
    const QList<uint> characters = name.toUcs4();
    return characters.size() == 1 ? keyForSign(characters.first(), layout) : std::nullopt;
}

std::optional<SystemShortcut> shortcut(const std::optional<TypingKey>& key, ModifierMask modifiers) {
    if (!key)
        return std::nullopt;
    return SystemShortcut{key->key, modifiers | (key->shift ? Modifier::shift : 0), true};
}

} // namespace

std::optional<SystemShortcut> ShortcutNotation::fromAccelerator(const QString& text,
                                                                const KeyboardLayout& layout) {
    ModifierMask modifiers = 0;
    QString rest = text.trimmed();
    while (rest.startsWith(u'<')) {
        const qsizetype end = rest.indexOf(u'>');
        const auto modifier = end < 0 ? std::nullopt : modifierNamed(rest.mid(1, end - 1));
        if (!modifier)
            return std::nullopt;
        modifiers |= *modifier;
        rest.remove(0, end + 1);
    }
    return shortcut(keyNamed(rest, layout), modifiers);
}

std::optional<SystemShortcut> ShortcutNotation::fromCombinedKey(int combined, const KeyboardLayout& layout) {
    const auto modifierBits = static_cast<uint>(combined) & static_cast<uint>(Qt::KeyboardModifierMask);
    const auto key = static_cast<int>(static_cast<uint>(combined) & ~modifierBits);
    const ModifierMask modifiers = modifiersFrom(Qt::KeyboardModifiers::fromInt(modifierBits));
    if (key <= 0 || key == Qt::Key_unknown)
        return std::nullopt;
    const auto* named = std::ranges::find(namedKeys, key, &NamedKey::toolkitKey);
    if (named != namedKeys.end())
        return shortcut(TypingKey{named->key, key == Qt::Key_Backtab}, modifiers);
    if (key >= Qt::Key_Escape)
        return std::nullopt;
    return shortcut(keyForSign(static_cast<char32_t>(key), layout), modifiers);
}

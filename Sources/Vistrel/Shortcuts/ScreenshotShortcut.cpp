#include "Shortcuts/ScreenshotShortcut.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

std::optional<quint32> number(const QJsonValue& value) {
    const double stored = value.toDouble(-1);
    if (!value.isDouble() || stored < 0 || stored > std::numeric_limits<quint32>::max() ||
        stored != std::floor(stored))
        return std::nullopt;
    return static_cast<quint32>(stored);
}

std::optional<ScreenshotShortcut> shortcutIn(const QJsonValue& value) {
    const QJsonObject object = value.toObject();
    const auto keyCode = number(object.value(QLatin1StringView("keyCode")));
    const auto modifiers = number(object.value(QLatin1StringView("modifiers")));
    const QJsonValue keyLabel = object.value(QLatin1StringView("keyLabel"));
    if (!keyCode || !modifiers || !keyLabel.isString())
        return std::nullopt;
    return ScreenshotShortcut{*keyCode, *modifiers, keyLabel.toString()};
}

/// The text as a JSON string with its quotes.
QByteArray quoted(const QString& text) {
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

} // namespace

QString ScreenshotShortcut::label() const {
    QString text;
    if (modifiers & Modifier::control)
        text += QChar(0x2303);
    if (modifiers & Modifier::option)
        text += QChar(0x2325);
    if (modifiers & Modifier::shift)
        text += QChar(0x21E7);
    if (modifiers & Modifier::command)
        text += QChar(0x2318);
    return text + keyLabel;
}

ScreenshotShortcut ScreenshotShortcut::defaultShortcut() {
    return {25, Modifier::command | Modifier::shift, QStringLiteral("9")};
}

std::optional<ScreenshotShortcut> ScreenshotShortcut::from(const ShortcutKeyEvent& event) {
    if (event.keyCode == Key::escape)
        return std::nullopt;
    ScreenshotShortcut shortcut{event.keyCode, event.modifiers & Modifier::all, {}};
    if (event.keyCode == Key::f13) {
        shortcut.keyLabel = QStringLiteral("Print Screen (F13)");
        return shortcut;
    }
    if (event.isPrintScreen) {
        shortcut.keyLabel = QStringLiteral("Print Screen");
        return shortcut;
    }
    const std::optional<QString>& text =
        event.characters ? event.characters : event.charactersIgnoringModifiers;
    if (!(event.modifiers & (Modifier::command | Modifier::control)) || event.isFunctionKey || !text ||
        text->isEmpty())
        return std::nullopt;
    shortcut.keyLabel = text->toUpper();
    return shortcut;
}

std::vector<ScreenshotShortcut> ScreenshotShortcut::initialSet(const std::optional<QByteArray>& savedData,
                                                               const std::optional<QByteArray>& legacyData) {
    if (const auto saved = savedData ? decodeList(*savedData) : std::nullopt; saved && !saved->empty()) {
        const bool hasDefault = std::ranges::find(*saved, defaultShortcut()) != saved->end();
        return {hasDefault ? defaultShortcut() : saved->front()};
    }
    if (const auto legacy = legacyData ? decode(*legacyData) : std::nullopt)
        return {*legacy};
    return {defaultShortcut()};
}

// Written by hand because the library sorts keys, and other readers were promised this order.
QByteArray ScreenshotShortcut::encode() const {
    return "{\"keyCode\":" + QByteArray::number(keyCode) + ",\"modifiers\":" + QByteArray::number(modifiers) +
           ",\"keyLabel\":" + quoted(keyLabel) + '}';
}

std::optional<ScreenshotShortcut> ScreenshotShortcut::decode(const QByteArray& json) {
    return shortcutIn(QJsonDocument::fromJson(json).object());
}

QByteArray ScreenshotShortcut::encodeList(const std::vector<ScreenshotShortcut>& shortcuts) {
    QByteArrayList elements;
    for (const ScreenshotShortcut& shortcut : shortcuts)
        elements.append(shortcut.encode());
    return '[' + elements.join(',') + ']';
}

std::optional<std::vector<ScreenshotShortcut>> ScreenshotShortcut::decodeList(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    std::vector<ScreenshotShortcut> shortcuts;
    const QJsonArray elements = document.array();
    for (const auto& element : elements) {
        const auto shortcut = shortcutIn(element);
        if (!shortcut)
            return std::nullopt;
        shortcuts.push_back(*shortcut);
    }
    return shortcuts;
}

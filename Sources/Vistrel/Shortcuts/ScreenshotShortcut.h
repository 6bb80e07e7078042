#pragma once

#include "VistrelPlatform/Keyboard.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

/// A key press as the recorder saw it, without its window.
struct ShortcutKeyEvent {
    KeyCode keyCode = 0;
    ModifierMask modifiers = 0;
    /// What the key types with no modifier held, and what it typed with them left out of account.
    std::optional<QString> characters;
    std::optional<QString> charactersIgnoringModifiers;
    bool isPrintScreen = false;
    /// Arrows, F keys and others that type nothing.
    bool isFunctionKey = false;
};

/// A global capture shortcut as a value: the key, the modifiers, and what the user calls the key.
struct ScreenshotShortcut {
    KeyCode keyCode = 0;
    ModifierMask modifiers = 0;
    QString keyLabel;

    friend bool operator==(const ScreenshotShortcut&, const ScreenshotShortcut&) = default;

    /// Whether both are the same chord, whatever its key is called.
    bool sameChord(const ScreenshotShortcut& other) const {
        return keyCode == other.keyCode && modifiers == other.modifiers;
    }
    /// "⇧⌘9"
    QString label() const;

    /// ⇧⌘9
    static ScreenshotShortcut defaultShortcut();
    /// What the recorder makes of a key press; nothing when it may not be a shortcut.
    static std::optional<ScreenshotShortcut> from(const ShortcutKeyEvent& event);
    /// The one shortcut to start with, from the stored list or else the older single value.
    static std::vector<ScreenshotShortcut> initialSet(const std::optional<QByteArray>& savedData,
                                                      const std::optional<QByteArray>& legacyData);

    QByteArray encode() const;
    static std::optional<ScreenshotShortcut> decode(const QByteArray& json);
    static QByteArray encodeList(const std::vector<ScreenshotShortcut>& shortcuts);
    /// Nothing when any element is unreadable.
    static std::optional<std::vector<ScreenshotShortcut>> decodeList(const QByteArray& json);
};

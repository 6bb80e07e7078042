#pragma once

#include "Desktop/VistrelOnDesktop.h"

/// The program around the capture as its user meets it: its windows by their titles, the keyboard in them,
/// and what it stores.
class ApplicationOnDesktop : public VistrelOnDesktop {
public:
    using VistrelOnDesktop::VistrelOnDesktop;

    /// Another program's hold on the default shortcut, without the locks.
    static constexpr std::uint32_t superShift = 0x41;
    static constexpr std::uint8_t nineScanCode = 18;

    QString defaultsPath() const { return session.configHome() + QStringLiteral("/Vistrel/defaults.json"); }
    QJsonObject defaults() const;
    void setDefaults(const QJsonObject& all);
    /// The labels of the stored shortcuts.
    QString storedShortcut() const;

    /// Of the last event with the action.
    QJsonObject details(const char* action) const;

    /// Starts the program and waits for its launch in the journal, however far its setup is.
    void launch();
    /// Ends it as the desktop does at logout; its exit status.
    std::optional<int> end();

    /// Waits until the window is on the screen and has the keyboard.
    bool opens(const QString& title);
    bool closes(const QString& title);
    bool isOpen(const QString& title) { return session.client().windowTitled(title).has_value(); }
    /// Alt and the letter that a control shows.
    void mnemonic(KeyCode key) { session.input().chord(Modifier::option, key); }
    /// Waits until nobody holds the chord any more, as while another is recorded.
    bool isReleased(std::uint32_t modifiers = superShift, std::uint8_t scanCode = nineScanCode);
};

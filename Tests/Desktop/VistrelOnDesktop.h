#pragma once

#include "Desktop/Fixture/DesktopSession.h"
#include "Desktop/Fixture/Noise.h"
#include "Desktop/Fixture/Waiting.h"
#include "VistrelPlatform/Keyboard.h"

#include <QJsonObject>

#include <memory>
#include <optional>

/// One display of 1280 × 720 at scale 1.
inline DesktopSession::Options plainDesktop() {
    return {.screenSize = {1280, 720}, .windowManager = true};
}
inline DesktopSession::Options desktopWithBus() {
    return {.screenSize = {1280, 720}, .windowManager = true, .sessionBus = true};
}

inline constexpr KeyCode tabKey = 48;
inline constexpr KeyCode spaceKey = 49;

/// As the server knows it; the default shortcut's.
struct ServerChord {
    std::uint32_t state = XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT;
    std::uint8_t scanCode = 18;
};

/// The built program on a desktop of its own, past its first-run setup, seen from outside: the keyboard,
/// the pointer, the screen, the clipboard, its windows by their titles and the files it writes.
class VistrelOnDesktop {
public:
    /// `stored` is added to the defaults of a user who has been through the setup.
    explicit VistrelOnDesktop(const DesktopSession::Options& options = plainDesktop(),
                              const QJsonObject& stored = {});

    /// Starts the program and waits for its launch in the journal, however far its setup is.
    void launch(const QStringList& arguments = {});
    /// The same, and waits until its shortcut is its own.
    void start();
    /// Ends it as the desktop does at logout; its exit status.
    std::optional<int> end();
    /// Starts it without waiting for anything.
    std::unique_ptr<ChildProgram> startProgram(const QStringList& arguments = {});
    /// Runs a second copy to its end; its exit status.
    std::optional<int> runAgain(const QStringList& arguments = {}, QByteArray* output = nullptr);

    /// Presses the shortcut once.
    void pressShortcut();
    /// Presses the shortcut and waits until the overlay has the keyboard.
    bool capture();
    /// Waits until the overlay has come for the nth time and has the keyboard.
    bool isReady(int times = 1);
    /// Drags out a selection and waits for it.
    bool select(QRect area);
    /// Copies, and waits for the end of the capture; the picture in the clipboard.
    QImage copy();
    /// Presses Escape and waits for the end of the capture.
    bool closeCapture();
    void command(char letter);
    void key(KeyCode key, ModifierMask modifiers = 0) { session.input().chord(modifiers, key); }
    void type(const QString& text) { session.input().type(text); }

    /// The journal, oldest first; unreadable lines are a failure of the test. A capture that stands, but came
    /// later than its report vouches for, is as ready as any: the machine may be busy.
    std::vector<QJsonObject> events() const;
    /// The journal's actions in order, without the phases of captures.
    QStringList actions() const;
    int count(const char* action) const { return int(actions().count(QLatin1String(action))); }
    /// The same as one line, easy to compare and to read.
    std::string story() const { return actions().join(u' ').toStdString(); }
    /// Of the last event with the action.
    QJsonObject details(const char* action) const;
    /// Waits until the action is in the journal for the nth time.
    bool waitFor(const char* action, int times = 1);

    QString journalFolder() const { return session.dataHome() + QStringLiteral("/Vistrel/Diagnostics"); }
    QString reportPath() const {
        return session.dataHome() + QStringLiteral("/Vistrel/last-capture-timing.json");
    }
    QString defaultsPath() const { return session.configHome() + QStringLiteral("/Vistrel/defaults.json"); }
    QJsonObject defaults() const;
    void setDefaults(const QJsonObject& all);
    /// The stored shortcuts, as "modifiers+label".
    QString storedShortcut() const;

    QImage clipboardImage();
    /// What the part of the screen shows, once it looks the same for several looks in a row.
    QImage settled(QRect part, int looks = 25);

    /// The program's window that has the keyboard, waited for until it is another than `before`; XCB_NONE
    /// when none comes.
    xcb_window_t nextFocus(xcb_window_t before = XCB_NONE);
    /// Where the window with the keyboard stands; null when it is no top-level window.
    QRect focusedRect();
    /// What stands on the screen, lowest first, without the specks that window managers keep for themselves.
    std::vector<MappedWindow> windows();
    bool isOpen(const QString& title) { return session.client().windowTitled(title).has_value(); }
    /// Waits until the window is on the screen and has the keyboard.
    bool opens(const QString& title);
    bool closes(const QString& title);
    /// Starts a second copy, which brings the settings forward, and goes to the tab.
    [[nodiscard]] bool openSettings(int tab = 0);
    /// True when no program holds the chord.
    bool isFree(ServerChord chord = {});

    DesktopSession session;
    std::unique_ptr<ChildProgram> program;
    /// The one just built, unless the environment or the test names another (an installed one, say).
    QString programPath;

    static inline const QString setupWindow = QStringLiteral("Vistrel Setup");
    static inline const QString settingsWindow = QStringLiteral("Vistrel Settings");
    static inline const QString alert = QStringLiteral("Vistrel");
};

/// As pixels of the screen, which equal theirs.
QImage pictureIn(const QByteArray& encoded);
/// What a pixel looks like under the overlay's haze.
QRgb dimmed(QRgb pixel);

#pragma once

#include "Desktop/Fixture/DesktopSession.h"
#include "Desktop/Fixture/Waiting.h"

#include <QJsonObject>

#include <memory>
#include <optional>

/// The built program on a desktop of its own, past its first-run setup, seen from outside: the keyboard,
/// the pointer, the screen, the clipboard and the files it writes.
class VistrelOnDesktop {
public:
    /// `defaults` are added to those of a user who has been through the setup.
    explicit VistrelOnDesktop(const DesktopSession::Options& options, const QJsonObject& defaults = {});

    /// Starts the program and waits until its shortcut is its own.
    void start();
    /// Starts it without waiting for anything.
    std::unique_ptr<ChildProgram> startProgram(const QStringList& arguments = {});
    /// Runs a second copy to its end; its exit status.
    std::optional<int> runAgain(const QStringList& arguments, QByteArray* output = nullptr);

    /// Presses the shortcut and waits until the overlay is confirmed.
    bool capture();
    /// Presses the shortcut once.
    void pressShortcut();
    void command(char letter);

    /// The journal, oldest first; unreadable lines are a failure of the test.
    std::vector<QJsonObject> events() const;
    /// The journal's actions in order, without the phases of captures.
    QStringList actions() const;
    /// The same as one line, easy to compare and to read.
    std::string story() const { return actions().join(u' ').toStdString(); }
    /// Waits until the action is in the journal for the nth time.
    bool waitFor(const QString& action, int times = 1);
    QString journalFolder() const { return session.dataHome() + QStringLiteral("/Vistrel/Diagnostics"); }
    QString reportPath() const {
        return session.dataHome() + QStringLiteral("/Vistrel/last-capture-timing.json");
    }

    QImage clipboardImage();

    /// The program's window that has the keyboard, waited for until it is another than `before`; XCB_NONE
    /// when none comes.
    xcb_window_t nextFocus(xcb_window_t before = XCB_NONE);
    /// What stands on the screen, lowest first, without the specks that window managers keep for themselves.
    std::vector<MappedWindow> windows();
    /// Starts a second copy, which brings the settings forward, and goes to the tab.
    [[nodiscard]] bool openSettings(int tab);

    DesktopSession session;
    std::unique_ptr<ChildProgram> program;
    /// The one just built, unless the environment or the test names another (an installed one, say).
    QString programPath;

private:
    int captures = 0;
};

/// A picture without two equal neighbours, so that a shift by one pixel shows.
QImage noise(QSize size);
/// What a pixel looks like under the overlay's haze.
QRgb dimmed(QRgb pixel);
/// The largest difference of one channel between two pictures of the same size; 255 when sizes differ.
int largestDifference(const QImage& a, const QImage& b);

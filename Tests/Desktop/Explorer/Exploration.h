#pragma once

#include "Desktop/Explorer/Bystander.h"
#include "Desktop/Explorer/Rules.h"
#include "Desktop/Explorer/Steps.h"
#include "Desktop/VistrelOnDesktop.h"

#include <QSet>

/// One life of the built program on a desktop of its own: takes steps with a real keyboard and pointer, feeds
/// the rules with the same, and holds what the journal, the screen, the clipboard and the other windows say
/// against them after every step.
class Exploration {
public:
    struct Setup {
        std::vector<double> scales = {1};
        bool windowManager = false;

        /// What the seed makes of it.
        static Setup of(unsigned seed);
        QString text() const;
    };

    explicit Exploration(const Setup& setup);

    /// Says every step with what it led to.
    bool tells = false;
    /// Takes the steps and ends the program; what did not agree, or nothing.
    std::optional<QString> run(const std::vector<Step>& steps);

private:
    struct Disagreement {
        QString what;
    };

    static DesktopSession::Options desktopFor(const Setup& setup);
    [[noreturn]] void disagree(const QString& what) const { throw Disagreement{what}; }
    void expect(bool holds, const QString& what) const {
        if (!holds)
            disagree(what);
    }

    // Steps.
    void pressShortcut(const Step& step);
    void beginCapture(const Step& step);
    void perform(const Step& step);
    void move(const Step& step);
    void movePointer(QPoint to);
    void press(int button);
    void doublePress();
    void release(int button);
    void keyDown(int key);
    void keyUp(int key);
    void letGo();
    void requestAgain(const Step& step);
    void stealFocus();
    void cover(const Step& step);
    xcb_window_t windowOver(xcb_window_t overlay, xcb_window_t other = XCB_NONE);
    void escape(xcb_window_t window);
    void dismissDialog(const Step& step);
    void leave();
    void end();
    void tell(const Step& step);

    // Places.
    QPoint resolve(const Step& step) const;
    std::optional<QPoint> placeOn(const RuledDisplay& on, const Step& step) const;
    QPoint sure(QPoint position) const;

    // Looks.
    void check();
    void checkProgram();
    void checkJournal();
    bool isScaled();
    void checkPicture(std::size_t index);
    void checkClosed();
    QStringList newLines();
    xcb_window_t overlayOn(std::size_t index);
    std::vector<MappedWindow> windowsAbove(xcb_window_t overlay);
    void synchronize();
    ModifierMask modifiers() const;

    VistrelOnDesktop vistrel;
    Bystander bystander;
    Rules rules;
    QImage desktop;
    QSet<int> heldKeys;
    QStringList told;
    qint64 journalRead = 0;
    std::chrono::steady_clock::time_point lastPress;
    QPoint lastPressAt;
    std::optional<QPoint> hintAt;
    QString lastSaved;
    qsizetype toldBefore = 0;
};

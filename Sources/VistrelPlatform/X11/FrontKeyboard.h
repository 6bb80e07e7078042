#pragma once

#include "VistrelPlatform/X11/Xcb.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <vector>

class QWidget;

/// The keyboard while windows of ours are in front of everything: the front one has the input focus, and a
/// grab keeps every key from other programs whatever a window manager does with the focus. Main thread.
class FrontKeyboard : public QObject {
public:
    explicit FrontKeyboard(xcb_connection_t* toolkit);

    /// Windows of ours came to the front; `before` had the input focus until then.
    void begin(const xcb_get_input_focus_reply_t& before);
    /// They are about to go: what had the keyboard before has it again.
    void end();
    /// `window` is the front one from now on, until another is or it is dropped.
    void give(QWidget& window);
    /// The user pressed into `window`: as `give`, where that changes anything.
    void pressed(QWidget& window);
    void drop(const QWidget& window);
    /// Another program's window hides all of ours, as a screen locker's does, and may have the keyboard.
    void setCovered(bool covered);
    bool has(const QWidget& window) const;

    /// Sees every event before the toolkit does, and may change it. True for one that is not for the toolkit.
    bool filter(xcb_generic_event_t& event);

    /// The toolkit may not have noticed that this window has the keyboard again.
    std::function<void(QWidget&)> onReturned;

private:
    QWidget* front() const;
    bool holdsKeys() const { return begun && !isCovered; }
    void focusFront();
    void refocus();
    void grab();
    void handleFocusIn(const xcb_focus_in_event_t& event);
    bool handleFocusOut(const xcb_focus_out_event_t& event);
    void giveBack();
    void askForActivation(xcb_window_t window) const;
    bool setFocus(xcb_window_t id, std::uint8_t revertTo = XCB_INPUT_FOCUS_PARENT) const;
    xcb_window_t focusedWindow() const;
    xcb_window_t activeWindow() const;

    xcb_connection_t* connection;
    xcb_window_t root;
    /// Of the grab: shown as long as it lasts, so that no window that comes or goes ends it.
    xcb_window_t anchor;
    /// The front one last.
    std::vector<QPointer<QWidget>> order;
    xcb_window_t focusBefore = XCB_NONE;
    std::uint8_t revertBefore = XCB_INPUT_FOCUS_POINTER_ROOT;
    xcb_atom_t activeProperty = XCB_NONE;
    xcb_window_t activeBefore = XCB_NONE;
    /// Of the last key of ours.
    xcb_timestamp_t latestTime = XCB_CURRENT_TIME;
    bool begun = false;
    bool held = false;
    bool isCovered = false;
    int attempts = 0;
    QTimer grabAgain;
    QTimer refocusSoon;
    QTimer calm;
};

#pragma once

#include "VistrelPlatform/HotKeyBackend.h"
#include "VistrelPlatform/X11/X11Modifiers.h"
#include "VistrelPlatform/X11/X11ServerTime.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>

#include <optional>
#include <vector>

/// Hot keys as passive grabs on the root, on the toolkit's connection. Main thread. A grab stays silent
/// while another program holds the keyboard (an open menu); the raw key events of XInput 2 serve then.
class X11HotKeyBackend : public HotKeyBackend, private QAbstractNativeEventFilter {
public:
    /// Needs the application object on the xcb platform.
    X11HotKeyBackend();
    ~X11HotKeyBackend() override;

    HotKeyStatus registerHotKey(KeyCode key, ModifierMask modifiers, HotKeyId id) override;
    void unregisterHotKey(HotKeyId id) override;

private:
    struct Registration {
        HotKeyId id = 0;
        xcb_keycode_t keyCode = 0;
        ModifierMask modifiers = 0;

        bool hasChordOf(const Registration& other) const {
            return keyCode == other.keyCode && modifiers == other.modifiers;
        }
    };
    /// The last press of a key: the grab and the raw event tell the same one, with the same time.
    struct Press {
        xcb_keycode_t keyCode = 0;
        xcb_timestamp_t time = 0;
    };

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void handleRawEvent(const xcb_ge_generic_event_t& event);
    void handlePress(xcb_keycode_t keyCode, std::uint16_t state, xcb_timestamp_t time);
    void handleRelease(xcb_keycode_t keyCode);
    void keyboardChanged();
    void selectRawEvents();
    void readKeysDown();
    HotKeyStatus grab(const Registration& registration) const;
    void ungrab(const Registration& registration) const;

    xcb_connection_t* connection;
    xcb_window_t root = XCB_NONE;
    /// Until it is known, right after the start, every event counts as just now.
    X11ServerTime serverTime{false};
    X11Modifiers modifierMap;
    std::vector<Registration> registrations;
    std::optional<Press> held;
    X11Modifiers::Keys keysDown;
    bool rawEvents = false;
    std::uint8_t inputOpcode = 0;
    std::uint8_t keyboardEvent = 0;
    QTimer keyboardSettled;
    QTimer serverTimeSoon;
};

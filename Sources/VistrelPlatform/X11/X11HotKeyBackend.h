#pragma once

#include "VistrelPlatform/HotKeyBackend.h"
#include "VistrelPlatform/X11/X11Modifiers.h"
#include "VistrelPlatform/X11/X11ServerTime.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>

#include <bitset>
#include <optional>
#include <vector>

/// Hot keys as passive grabs on the root, on the toolkit's connection. Main thread. A grab stays silent
/// while another program holds the keyboard (an open menu); the raw key events of XInput 2 serve then. A
/// hot key's repetitions and its release are kept from the program's own windows.
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
    struct KeyInstant {
        xcb_keycode_t keyCode = 0;
        xcb_timestamp_t time = 0;

        friend bool operator==(const KeyInstant&, const KeyInstant&) = default;
    };

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void handleRawEvent(const xcb_ge_generic_event_t& event);
    void handleGrabbedKey(const xcb_key_press_event_t& key, bool isPress);
    void handlePress(KeyInstant now, std::uint16_t state);
    void handleRelease(KeyInstant now);
    /// Whether a key event of one of our windows belongs to a hot key that is, or just was, down.
    bool isOfHeldKey(KeyInstant now, bool isPress) const;
    bool isDown(xcb_keycode_t keyCode) const;
    void keyboardChanged();
    void selectRawEvents();
    HotKeyStatus grab(const Registration& registration) const;
    void ungrab(const Registration& registration) const;

    xcb_connection_t* connection;
    xcb_window_t root = XCB_NONE;
    /// Until it is known, right after the start, every event counts as just now.
    X11ServerTime serverTime{false};
    X11Modifiers modifierMap;
    std::vector<Registration> registrations;
    /// The keys of hot keys that are down since they were pressed, or since they were registered.
    std::bitset<256> held;
    std::optional<KeyInstant> lastPress;
    std::optional<KeyInstant> lastRelease;
    /// As the server last told it. It tells every change, before the presses that come after it: asked at a
    /// press it would say what holds by then, when a quick hand has let the modifiers go.
    std::uint16_t modifierState = 0;
    bool rawEvents = false;
    std::uint8_t inputOpcode = 0;
    std::uint8_t keyboardEvent = 0;
    QTimer keyboardSettled;
    QTimer serverTimeSoon;
};

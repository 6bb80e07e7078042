#include "VistrelPlatform/X11/X11HotKeyBackend.h"

#include "VistrelPlatform/KeyCodes.h"
#include "VistrelPlatform/X11/X11KeyboardEvent.h"

#include <QCoreApplication>

#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>

namespace {

/// A chord that no key of this keyboard produces.
constexpr HotKeyStatus hotKeyHasNoKey = -XCB_VALUE;
constexpr HotKeyStatus hotKeyConnectionLost = -1000;

const xcb_query_extension_reply_t* extension(xcb_connection_t* connection, xcb_extension_t* id) {
    const xcb_query_extension_reply_t* reply = xcb_get_extension_data(connection, id);
    return reply && reply->present ? reply : nullptr;
}

} // namespace

X11HotKeyBackend::X11HotKeyBackend() : connection(toolkitConnection()) {
    VISTREL_PRECONDITION(connection, "hot keys need the xcb platform");
    root = rootWindow(connection);
    const auto pointerCookie = xcb_query_pointer(connection, root);
    modifierMap = X11Modifiers::read(connection);
    if (const auto pointer = xcbReply<xcb_query_pointer_reply>(connection, pointerCookie))
        modifierState = pointer->mask;
    xkb_x11_setup_xkb_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &keyboardEvent,
                                nullptr);
    if (keyboardEvent != 0)
        selectRawEvents();
    serverTimeSoon.setSingleShot(true);
    serverTimeSoon.setInterval(0);
    QObject::connect(&serverTimeSoon, &QTimer::timeout, [this] { serverTime = X11ServerTime::measure(); });
    serverTimeSoon.start();
    keyboardSettled.setSingleShot(true);
    keyboardSettled.setInterval(0);
    QObject::connect(&keyboardSettled, &QTimer::timeout, [this] { keyboardChanged(); });
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11HotKeyBackend::~X11HotKeyBackend() {
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
    if (toolkitConnection() != connection)
        return;
    for (const Registration& registration : registrations)
        ungrab(registration);
    xcb_flush(connection);
}

void X11HotKeyBackend::selectRawEvents() {
    const auto* input = extension(connection, &xcb_input_id);
    // The keyboard whose modifiers the keyboard extension tells, and whose keys the grabs take.
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection);
    if (!input || device < 0)
        return;
    const auto versionCookie = xcb_input_xi_query_version(connection, 2, 100);
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const selection{{static_cast<xcb_input_device_id_t>(device), 1},
                      XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE};
    const auto cookie = xcb_input_xi_select_events_checked(connection, root, 1, &selection.head);
    const bool selected = !XcbOwned<xcb_generic_error_t>(xcb_request_check(connection, cookie));
    const auto version = xcbReply<xcb_input_xi_query_version_reply>(connection, versionCookie);
    // Raw events arrive during grabs from version 2.1 on.
    rawEvents = selected && version &&
                std::pair<int, int>(version->major_version, version->minor_version) >= std::pair(2, 1);
    inputOpcode = input->major_opcode;
}

HotKeyStatus X11HotKeyBackend::grab(const Registration& registration) const {
    if (xcb_connection_has_error(connection))
        return hotKeyConnectionLost;
    // Without its modifier the bare key would be taken from every program.
    if (!modifierMap.canProduce(registration.modifiers))
        return hotKeyHasNoKey;
    const std::uint16_t state = modifierMap.state(registration.modifiers);
    std::vector<xcb_void_cookie_t> cookies;
    for (const std::uint16_t locks : modifierMap.lockVariants())
        cookies.push_back(xcb_grab_key_checked(connection, 0, root, state | locks, registration.keyCode,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    HotKeyStatus status = hotKeyRegistered;
    for (const xcb_void_cookie_t cookie : cookies) {
        const XcbOwned<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
        if (error && status == hotKeyRegistered)
            status = error->error_code == XCB_ACCESS ? hotKeyExists : -error->error_code;
    }
    if (status != hotKeyRegistered)
        ungrab(registration);
    return status;
}

void X11HotKeyBackend::ungrab(const Registration& registration) const {
    const std::uint16_t state = modifierMap.state(registration.modifiers);
    for (const std::uint16_t locks : modifierMap.lockVariants())
        xcb_ungrab_key(connection, registration.keyCode, root, state | locks);
    xcb_flush(connection);
}

HotKeyStatus X11HotKeyBackend::registerHotKey(KeyCode key, ModifierMask modifiers, HotKeyId id) {
    const auto scanCode = scanCodeForKeyCode(key);
    if (!scanCode)
        return hotKeyHasNoKey;
    const Registration registration{id, static_cast<xcb_keycode_t>(*scanCode), modifiers};
    const bool already = std::ranges::any_of(
        registrations, [&](const Registration& row) { return row.hasChordOf(registration); });
    if (!already)
        if (const HotKeyStatus status = grab(registration); status != hotKeyRegistered)
            return status;
    registrations.push_back(registration);
    // The press was meant for whoever asks: the shortcut has just been typed into the recorder, say.
    if (isDown(registration.keyCode))
        held.set(registration.keyCode);
    return hotKeyRegistered;
}

void X11HotKeyBackend::unregisterHotKey(HotKeyId id) {
    const auto found = std::ranges::find(registrations, id, &Registration::id);
    if (found == registrations.end())
        return;
    const Registration registration = *found;
    registrations.erase(found);
    // The chord may have been registered a second time before the first was given up.
    const bool shared = std::ranges::any_of(
        registrations, [&](const Registration& row) { return row.hasChordOf(registration); });
    if (!shared)
        ungrab(registration);
}

void X11HotKeyBackend::keyboardChanged() {
    const X11Modifiers current = X11Modifiers::read(connection);
    if (current == modifierMap) // another keyboard of the same kind
        return;
    for (const Registration& registration : registrations)
        ungrab(registration);
    modifierMap = current;
    for (const Registration& registration : registrations)
        if (const HotKeyStatus status = grab(registration); status != hotKeyRegistered)
            qWarning("hot key %u was lost with a keyboard change: status %d", registration.id, status);
}

bool X11HotKeyBackend::isDown(xcb_keycode_t keyCode) const {
    const auto keymap = xcbReply<xcb_query_keymap_reply>(connection, xcb_query_keymap(connection));
    return keymap && (keymap->keys[keyCode / 8] >> (keyCode % 8) & 1) != 0;
}

bool X11HotKeyBackend::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (type != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const auto kind = static_cast<std::uint8_t>(event->response_type & 0x7F);
    if (kind == XCB_KEY_PRESS || kind == XCB_KEY_RELEASE) {
        const auto& key = *reinterpret_cast<const xcb_key_press_event_t*>(event);
        if (key.event != root)
            return isOfHeldKey({key.detail, key.time}, kind == XCB_KEY_PRESS);
        handleGrabbedKey(key, kind == XCB_KEY_PRESS);
    } else if (kind == XCB_GE_GENERIC) {
        const auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event);
        if (rawEvents && generic->extension == inputOpcode)
            handleRawEvent(*generic);
    } else if (kind == XCB_MAPPING_NOTIFY) {
        keyboardSettled.start();
    } else if (keyboardEvent != 0 && kind == keyboardEvent) {
        const auto& change = *reinterpret_cast<const X11KeyboardEvent*>(event);
        if (change.changesMapping())
            keyboardSettled.start();
        else if (change.kind == X11KeyboardEvent::stateKind)
            modifierState = change.grabModifiers;
    }
    // The toolkit goes on with it, and learns the event's time from it.
    return false;
}

void X11HotKeyBackend::handleGrabbedKey(const xcb_key_press_event_t& key, bool isPress) {
    const KeyInstant now{key.detail, key.time};
    if (!isPress)
        return handleRelease(now);
    // The keyboard is free again at once, so that what opens now has every key while this one stays down. Not
    // where the release would then be told to others only.
    if (rawEvents) {
        xcb_ungrab_keyboard(connection, key.time);
        xcb_flush(connection);
    }
    // A repetition: a release and a press of the same instant.
    if (lastRelease == now)
        held.set(now.keyCode);
    handlePress(now, key.state);
}

void X11HotKeyBackend::handleRawEvent(const xcb_ge_generic_event_t& event) {
    if (event.event_type != XCB_INPUT_RAW_KEY_PRESS && event.event_type != XCB_INPUT_RAW_KEY_RELEASE)
        return;
    const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
    const KeyInstant now{static_cast<xcb_keycode_t>(raw.detail), raw.time};
    if (event.event_type == XCB_INPUT_RAW_KEY_RELEASE)
        return handleRelease(now);
    if (raw.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT)
        return;
    // A new press, even if the last release was never told.
    held.reset(now.keyCode);
    handlePress(now, modifierState);
}

void X11HotKeyBackend::handlePress(KeyInstant now, std::uint16_t state) {
    const auto newest =
        std::ranges::find_if(registrations.rbegin(), registrations.rend(), [&](const Registration& row) {
            return row.keyCode == now.keyCode && modifierMap.matches(state, row.modifiers);
        });
    // The raw event and the grab tell the same press.
    if (newest == registrations.rend() || held[now.keyCode] || lastPress == now)
        return;
    held.set(now.keyCode);
    lastPress = now;
    if (onPressed)
        onPressed(newest->id, serverTime.instantOf(now.time));
}

void X11HotKeyBackend::handleRelease(KeyInstant now) {
    if (!held[now.keyCode])
        return;
    held.reset(now.keyCode);
    lastRelease = now;
}

bool X11HotKeyBackend::isOfHeldKey(KeyInstant now, bool isPress) const {
    return held[now.keyCode] || (!isPress && lastRelease == now);
}

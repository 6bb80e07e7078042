#include "VistrelPlatform/X11/X11HotKeyBackend.h"

#include "VistrelPlatform/KeyCodes.h"

#include <QCoreApplication>

#include <xcb/xinput.h>

#include <algorithm>

namespace {

/// A chord that no key of this keyboard produces.
constexpr HotKeyStatus hotKeyHasNoKey = -XCB_VALUE;
constexpr HotKeyStatus hotKeyConnectionLost = -1000;

/// What the keyboard extension's events begin with.
struct KeyboardEventHead {
    std::uint8_t type;
    std::uint8_t kind;
};
constexpr std::uint8_t newKeyboardKind = 0;
constexpr std::uint8_t keyMapKind = 1;

const xcb_query_extension_reply_t* extension(xcb_connection_t* connection, xcb_extension_t* id) {
    const xcb_query_extension_reply_t* reply = xcb_get_extension_data(connection, id);
    return reply && reply->present ? reply : nullptr;
}

} // namespace

X11HotKeyBackend::X11HotKeyBackend() : connection(toolkitConnection()) {
    VISTREL_PRECONDITION(connection, "hot keys need the xcb platform");
    root = rootWindow(connection);
    constexpr char keyboardName[] = "XKEYBOARD";
    const auto keyboardCookie = xcb_query_extension(connection, sizeof keyboardName - 1, keyboardName);
    modifierMap = X11Modifiers::read(connection);
    if (const auto keyboard = xcbReply<xcb_query_extension_reply>(connection, keyboardCookie);
        keyboard && keyboard->present)
        keyboardEvent = keyboard->first_event;
    selectRawEvents();
    readKeysDown();
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
    if (!input)
        return;
    const auto versionCookie = xcb_input_xi_query_version(connection, 2, 100);
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
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
    // Another keyboard of the same kind. The keys held down are known: asking the server now would run ahead
    // of the presses that are still on their way here.
    if (current == modifierMap)
        return;
    readKeysDown();
    for (const Registration& registration : registrations)
        ungrab(registration);
    modifierMap = current;
    for (const Registration& registration : registrations)
        if (const HotKeyStatus status = grab(registration); status != hotKeyRegistered)
            qWarning("hot key %u was lost with a keyboard change: status %d", registration.id, status);
}

bool X11HotKeyBackend::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (type != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const auto kind = static_cast<std::uint8_t>(event->response_type & 0x7F);
    if (kind == XCB_KEY_PRESS || kind == XCB_KEY_RELEASE) {
        const auto* key = reinterpret_cast<const xcb_key_press_event_t*>(event);
        if (key->event == root && kind == XCB_KEY_PRESS)
            handlePress(key->detail, key->state, key->time);
        else if (key->event == root && !rawEvents)
            handleRelease(key->detail);
    } else if (kind == XCB_GE_GENERIC) {
        const auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event);
        if (rawEvents && generic->extension == inputOpcode)
            handleRawEvent(*generic);
    } else if (kind == XCB_MAPPING_NOTIFY) {
        keyboardSettled.start();
    } else if (keyboardEvent != 0 && kind == keyboardEvent) {
        const auto* head = reinterpret_cast<const KeyboardEventHead*>(event);
        if (head->kind == newKeyboardKind || head->kind == keyMapKind)
            keyboardSettled.start();
    }
    // The toolkit goes on with it, and learns the event's time from it.
    return false;
}

void X11HotKeyBackend::handleRawEvent(const xcb_ge_generic_event_t& event) {
    if (event.event_type != XCB_INPUT_RAW_KEY_PRESS && event.event_type != XCB_INPUT_RAW_KEY_RELEASE)
        return;
    const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
    const auto keyCode = static_cast<xcb_keycode_t>(raw.detail);
    if (event.event_type == XCB_INPUT_RAW_KEY_RELEASE) {
        keysDown.reset(keyCode);
        handleRelease(keyCode);
        return;
    }
    if (raw.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT)
        return;
    // Raw events carry no modifiers: they follow from the keys that went down before.
    const std::uint16_t state = modifierMap.stateOf(keysDown);
    keysDown.set(keyCode);
    const bool wanted =
        std::ranges::any_of(registrations, [&](const Registration& row) { return row.keyCode == keyCode; });
    if (!wanted)
        return;
    // A raw press without the repeat flag is a new one even if the last release was never told.
    if (held && held->keyCode == keyCode && held->time != raw.time)
        held.reset();
    handlePress(keyCode, state, raw.time);
}

void X11HotKeyBackend::readKeysDown() {
    keysDown.reset();
    const auto keymap = xcbReply<xcb_query_keymap_reply>(connection, xcb_query_keymap(connection));
    if (!keymap)
        return;
    for (std::size_t key = 0; key < keysDown.size(); ++key)
        keysDown.set(key, (keymap->keys[key / 8] >> (key % 8) & 1) != 0);
}

void X11HotKeyBackend::handlePress(xcb_keycode_t keyCode, std::uint16_t state, xcb_timestamp_t time) {
    if (held && held->keyCode == keyCode)
        return;
    const auto newest =
        std::ranges::find_if(registrations.rbegin(), registrations.rend(), [&](const Registration& row) {
            return row.keyCode == keyCode && modifierMap.matches(state, row.modifiers);
        });
    if (newest == registrations.rend())
        return;
    held = Press{keyCode, time};
    if (onPressed)
        onPressed(newest->id, serverTime.instantOf(time));
}

void X11HotKeyBackend::handleRelease(xcb_keycode_t keyCode) {
    if (held && held->keyCode == keyCode)
        held.reset();
}

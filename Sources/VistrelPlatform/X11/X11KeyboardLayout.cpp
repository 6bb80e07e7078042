#include "VistrelPlatform/X11/X11KeyboardLayout.h"

#include "VistrelPlatform/KeyCodes.h"
#include "VistrelPlatform/X11/X11KeyboardEvent.h"
#include "VistrelPlatform/X11/Xcb.h"

#include <QCoreApplication>

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <tuple>

namespace {

template<auto release>
struct Release {
    template<class T>
    void operator()(T* pointer) const {
        release(pointer);
    }
};
using Context = std::unique_ptr<xkb_context, Release<xkb_context_unref>>;
using Keymap = std::unique_ptr<xkb_keymap, Release<xkb_keymap_unref>>;
using State = std::unique_ptr<xkb_state, Release<xkb_state_unref>>;

/// Zero for a key that types nothing visible. The keypad's keys stand for themselves, not for what they type.
char32_t typedBy(xkb_keymap* keymap, xkb_keycode_t key, xkb_layout_index_t group, xkb_level_index_t level) {
    const xkb_keysym_t* symbols = nullptr;
    if (xkb_keymap_key_get_syms_by_level(keymap, key, group, level, &symbols) != 1 ||
        (*symbols >= XKB_KEY_KP_Space && *symbols <= XKB_KEY_KP_9))
        return 0;
    const char32_t character = xkb_keysym_to_utf32(*symbols);
    return QChar::isPrint(character) ? character : 0;
}

} // namespace

X11KeyboardLayout::X11KeyboardLayout() {
    xcb_connection_t* connection = toolkitConnection();
    if (connection)
        xkb_x11_setup_xkb_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                    XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &keyboardEvent,
                                    nullptr);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11KeyboardLayout::~X11KeyboardLayout() {
    if (QCoreApplication* application = QCoreApplication::instance())
        application->removeNativeEventFilter(this);
}

std::optional<TypingKey> X11KeyboardLayout::keyTyping(char32_t character) const {
    const std::vector<Sign>& known = current();
    const auto sign = std::ranges::find(known, character, &Sign::character);
    if (sign != known.end())
        return TypingKey{sign->key, sign->shift};
    return known.empty() ? USKeyboardLayout().keyTyping(character) : std::nullopt;
}

QString X11KeyboardLayout::textOf(KeyCode key) const {
    const std::vector<Sign>& known = current();
    if (known.empty())
        return USKeyboardLayout().textOf(key);
    const auto sign = std::ranges::find_if(known, [this, key](const Sign& candidate) {
        return candidate.key == key && candidate.group == activeGroup && !candidate.shift;
    });
    return sign == known.end() ? QString() : QString::fromUcs4(&sign->character, 1);
}

const std::vector<X11KeyboardLayout::Sign>& X11KeyboardLayout::current() const {
    if (std::exchange(outdated, false))
        read();
    return signs;
}

void X11KeyboardLayout::read() const {
    signs.clear();
    xcb_connection_t* connection = toolkitConnection();
    const std::int32_t device =
        connection && keyboardEvent != 0 ? xkb_x11_get_core_keyboard_device_id(connection) : -1;
    if (device < 0)
        return;
    const Context context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    const Keymap keymap(context ? xkb_x11_keymap_new_from_device(context.get(), connection, device,
                                                                 XKB_KEYMAP_COMPILE_NO_FLAGS)
                                : nullptr);
    const State state(keymap ? xkb_x11_state_new_from_device(keymap.get(), connection, device) : nullptr);
    if (!state)
        return;
    activeGroup = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE);
    for (xkb_keycode_t code = xkb_keymap_min_keycode(keymap.get());
         code <= xkb_keymap_max_keycode(keymap.get()); ++code) {
        const auto key = keyCodeForScanCode(code);
        const xkb_layout_index_t groups = xkb_keymap_num_layouts_for_key(keymap.get(), code);
        if (!key)
            continue;
        for (xkb_layout_index_t group = 0; group < groups; ++group) {
            for (const bool shift : {false, true})
                if (const char32_t character = typedBy(keymap.get(), code, group, shift ? 1 : 0))
                    signs.push_back({character, *key, group, shift});
        }
    }
    std::ranges::stable_sort(signs, {}, [this](const Sign& sign) {
        // Some keyboards have a second key for a sign; programs mean the usual one.
        return std::tuple(sign.group != activeGroup, sign.key > Key::firstUnnamed, sign.group, sign.shift);
    });
}

bool X11KeyboardLayout::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (type != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const auto kind = static_cast<std::uint8_t>(event->response_type & 0x7F);
    if (kind == XCB_MAPPING_NOTIFY) {
        outdated = true;
    } else if (keyboardEvent != 0 && kind == keyboardEvent) {
        const auto* change = reinterpret_cast<const X11KeyboardEvent*>(event);
        outdated = outdated || change->changesMapping() ||
                   (change->kind == X11KeyboardEvent::stateKind && change->group != activeGroup);
    }
    return false;
}

#include "Desktop/Explorer/Bystander.h"

#include "Desktop/Fixture/Waiting.h"

#include <cstdlib>
#include <memory>
#include <utility>

Bystander::Bystander(const QByteArray& displayName)
    : client(displayName),
      own(client.createWindow({.rect = {40, 40, 200, 120},
                               .color = 0xFF204060,
                               .overrideRedirect = false,
                               .eventMask = XCB_EVENT_MASK_KEY_PRESS})) {
    const std::uint32_t answers = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(client.connection(), client.root(), XCB_CW_EVENT_MASK, &answers);
    client.map(own);
    waitUntil([this] {
        takeKeyboard();
        return hasKeyboard();
    });
}

void Bystander::takeKeyboard() {
    xcb_set_input_focus(client.connection(), XCB_INPUT_FOCUS_PARENT, own, XCB_CURRENT_TIME);
    client.synchronize();
}

std::vector<int> Bystander::keys() {
    client.synchronize();
    collect();
    return std::exchange(pressed, {});
}

xcb_window_t Bystander::cover(QRect rect) {
    const xcb_window_t window = client.createWindow({.rect = rect, .color = 0xFF00AA00});
    client.map(window);
    return window;
}

bool Bystander::answers(xcb_window_t window) {
    xcb_client_message_event_t question = {};
    question.response_type = XCB_CLIENT_MESSAGE;
    question.format = 32;
    question.window = window;
    question.type = client.atom("WM_PROTOCOLS");
    question.data.data32[0] = client.atom("_NET_WM_PING");
    question.data.data32[1] = ++asked;
    question.data.data32[2] = window;
    xcb_send_event(client.connection(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&question));
    client.synchronize();
    return waitUntil([this] {
        collect();
        return answered == asked;
    });
}

void Bystander::collect() {
    struct Free {
        void operator()(xcb_generic_event_t* event) const { std::free(event); }
    };
    while (const std::unique_ptr<xcb_generic_event_t, Free> event{xcb_poll_for_event(client.connection())}) {
        const int type = event->response_type & 0x7F;
        if (type == XCB_KEY_PRESS) {
            pressed.push_back(reinterpret_cast<const xcb_key_press_event_t&>(*event).detail);
        } else if (type == XCB_CLIENT_MESSAGE) {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
            if (message.type == client.atom("WM_PROTOCOLS") &&
                message.data.data32[0] == client.atom("_NET_WM_PING"))
                answered = message.data.data32[1];
        }
    }
}

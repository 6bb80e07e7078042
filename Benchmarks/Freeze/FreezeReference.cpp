// The least a frozen overlay can cost: a grabbed chord (Super+Shift+9) copies every display in the server,
// dims it there, and maps it as a window's background. Escape hides it again. Prints that it is ready, then
// the milliseconds from each key event's own time until the server has handled everything.

#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <vector>

namespace {

constexpr xcb_keycode_t keyNine = 18;
constexpr xcb_keycode_t keyEscape = 9;

struct Free {
    void operator()(void* pointer) const { std::free(pointer); }
};
template<class T>
std::unique_ptr<T, Free> own(T* pointer) {
    return std::unique_ptr<T, Free>(pointer);
}

struct Display {
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    xcb_window_t window = XCB_NONE;
    xcb_pixmap_t pixmap = XCB_NONE;
    xcb_render_picture_t picture = XCB_NONE;
};

class Reference {
public:
    explicit Reference(xcb_connection_t* server)
        : connection(server),
          screen(xcb_setup_roots_iterator(xcb_get_setup(server)).data),
          context(xcb_generate_id(server)) {
        const std::uint32_t values[] = {XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS, 0};
        xcb_create_gc(connection, context, screen->root, XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES,
                      values);
        const auto monitors = own(xcb_randr_get_monitors_reply(
            connection, xcb_randr_get_monitors(connection, screen->root, 1), nullptr));
        for (auto it = xcb_randr_get_monitors_monitors_iterator(monitors.get()); it.rem;
             xcb_randr_monitor_info_next(&it))
            add(*it.data);
        xcb_grab_key(connection, 0, screen->root, XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT, keyNine,
                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        freeze();
        synchronize();
        std::puts("ready");
        std::fflush(stdout);
    }

    void run() {
        while (const auto event = own(xcb_wait_for_event(connection))) {
            if ((event->response_type & 0x7F) != XCB_KEY_PRESS)
                continue;
            const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(*event);
            if (key.event == screen->root)
                show(key.time);
            else if (key.detail == keyEscape)
                hide();
        }
    }

private:
    void add(const xcb_randr_monitor_info_t& monitor) {
        Display display{monitor.x, monitor.y, monitor.width, monitor.height};
        display.window = xcb_generate_id(connection);
        display.pixmap = xcb_generate_id(connection);
        display.picture = xcb_generate_id(connection);
        xcb_create_pixmap(connection, screen->root_depth, display.pixmap, screen->root, display.width,
                          display.height);
        xcb_render_create_picture(connection, display.picture, display.pixmap, rootFormat(), 0, nullptr);
        const std::uint32_t values[] = {display.pixmap, 1, XCB_EVENT_MASK_KEY_PRESS};
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, display.window, screen->root, display.x,
                          display.y, display.width, display.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        displays.push_back(display);
    }

    xcb_render_pictformat_t rootFormat() const {
        const auto formats = own(xcb_render_query_pict_formats_reply(
            connection, xcb_render_query_pict_formats(connection), nullptr));
        for (auto it = xcb_render_query_pict_formats_formats_iterator(formats.get()); it.rem;
             xcb_render_pictforminfo_next(&it))
            if (it.data->depth == screen->root_depth && it.data->direct.red_shift == 16)
                return it.data->id;
        return XCB_NONE;
    }

    void freeze() {
        constexpr xcb_render_color_t haze{0x1F1F, 0x1F1F, 0x1F1F, 0x6666};
        for (const Display& display : displays) {
            xcb_copy_area(connection, screen->root, display.pixmap, context, display.x, display.y, 0, 0,
                          display.width, display.height);
            const xcb_rectangle_t all{0, 0, display.width, display.height};
            xcb_render_fill_rectangles(connection, XCB_RENDER_PICT_OP_OVER, display.picture, haze, 1, &all);
        }
    }

    void show(xcb_timestamp_t time) {
        freeze();
        for (const Display& display : displays) {
            // Said again: the server may have kept the pixmap's former content.
            xcb_change_window_attributes(connection, display.window, XCB_CW_BACK_PIXMAP, &display.pixmap);
            const std::uint32_t above = XCB_STACK_MODE_ABOVE;
            xcb_configure_window(connection, display.window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
            xcb_map_window(connection, display.window);
        }
        xcb_set_input_focus(connection, XCB_INPUT_FOCUS_PARENT, displays.front().window, time);
        synchronize();
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        const auto milliseconds = static_cast<std::uint32_t>(now.tv_sec * 1000 + now.tv_nsec / 1'000'000);
        std::printf("%u\n", milliseconds - time);
        std::fflush(stdout);
    }

    void hide() {
        for (const Display& display : displays)
            xcb_unmap_window(connection, display.window);
        xcb_flush(connection);
    }

    void synchronize() {
        own(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }

    xcb_connection_t* connection;
    xcb_screen_t* screen;
    xcb_gcontext_t context;
    std::vector<Display> displays;
};

} // namespace

int main() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection))
        return 1;
    Reference(connection).run();
    xcb_disconnect(connection);
    return 0;
}

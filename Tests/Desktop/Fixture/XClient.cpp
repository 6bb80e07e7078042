#include "Desktop/Fixture/XClient.h"

#include "VistrelPlatform/X11/Xcb.h"

#include <xcb/randr.h>
#include <xcb/shape.h>

#include <xcb/xcbext.h>

#include <sys/uio.h>

#include <algorithm>

namespace {

template<class T>
XcbOwned<T> own(T* reply) {
    return XcbOwned<T>(reply);
}

xcb_rectangle_t rectangle(QRect rect) {
    return {static_cast<std::int16_t>(rect.x()), static_cast<std::int16_t>(rect.y()),
            static_cast<std::uint16_t>(rect.width()), static_cast<std::uint16_t>(rect.height())};
}

/// xcb's own function for this request trips over an assertion of its library.
struct SetMonitorRequest {
    std::uint8_t majorOpcode;
    std::uint8_t minorOpcode;
    std::uint16_t length;
    xcb_window_t window;
    xcb_randr_monitor_info_t info;
    xcb_randr_output_t output;
};

void send(xcb_connection_t* connection, SetMonitorRequest& request) {
    static const xcb_protocol_request_t protocol{1, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
    const std::size_t size =
        sizeof request - (request.info.nOutput == 0 ? sizeof request.output : std::size_t{0});
    // xcb writes the header, and uses the two entries before the first itself.
    iovec parts[3] = {};
    parts[2] = {&request, size};
    xcb_send_request(connection, 0, parts + 2, &protocol);
}

} // namespace

XClient::XClient(const QByteArray& displayName) : xcb(xcb_connect(displayName.constData(), nullptr)) {
    if (xcb_connection_has_error(xcb))
        qFatal("cannot reach the X server %s", displayName.constData());
    screen = xcb_setup_roots_iterator(xcb_get_setup(xcb)).data;
}

XClient::~XClient() {
    xcb_disconnect(xcb);
}

xcb_atom_t XClient::atom(const QByteArray& name) {
    xcb_atom_t& known = atoms[name];
    if (known == XCB_NONE) {
        const auto cookie =
            xcb_intern_atom(xcb, 0, static_cast<std::uint16_t>(name.size()), name.constData());
        if (const auto reply = own(xcb_intern_atom_reply(xcb, cookie, nullptr)))
            known = reply->atom;
    }
    return known;
}

void XClient::synchronize() {
    own(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
}

QImage XClient::pixels(QRect rect) {
    if (rect.isNull())
        rect = QRect(QPoint(0, 0), screenSize());
    const auto [x, y, width, height] = rectangle(rect);
    const auto cookie = xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, x, y, width, height, ~0U);
    const auto reply = own(xcb_get_image_reply(xcb, cookie, nullptr));
    if (!reply)
        return {};
    const QImage shared(xcb_get_image_data(reply.get()), width, height, QImage::Format_RGB32);
    // Opaque, so that pictures compare equal whatever the server leaves in the fourth byte.
    return shared.convertToFormat(QImage::Format_RGB888).convertToFormat(QImage::Format_RGB32);
}

QRgb XClient::pixelAt(QPoint position) {
    const QImage image = pixels(QRect(position, QSize(1, 1)));
    return image.isNull() ? 0 : image.pixel(0, 0);
}

xcb_pixmap_t XClient::upload(const QImage& picture) {
    const QImage image = picture.convertToFormat(QImage::Format_RGB32);
    const auto width = static_cast<std::uint16_t>(image.width());
    const xcb_pixmap_t pixmap = xcb_generate_id(xcb);
    xcb_create_pixmap(xcb, screen->root_depth, pixmap, screen->root, width,
                      static_cast<std::uint16_t>(image.height()));
    const xcb_gcontext_t context = xcb_generate_id(xcb);
    xcb_create_gc(xcb, context, pixmap, 0, nullptr);
    const int band = std::max(1, 200'000 / static_cast<int>(image.bytesPerLine()));
    for (int y = 0; y < image.height(); y += band) {
        const int rows = std::min(band, image.height() - y);
        xcb_put_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, width,
                      static_cast<std::uint16_t>(rows), 0, static_cast<std::int16_t>(y), 0,
                      screen->root_depth, static_cast<std::uint32_t>(rows * image.bytesPerLine()),
                      image.constScanLine(y));
    }
    xcb_free_gc(xcb, context);
    return pixmap;
}

void XClient::setRootPicture(const QImage& picture) {
    const xcb_pixmap_t previous = std::exchange(rootPicture, upload(picture));
    xcb_change_window_attributes(xcb, screen->root, XCB_CW_BACK_PIXMAP, &rootPicture);
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, screen->root, atom("_XROOTPMAP_ID"), XCB_ATOM_PIXMAP, 32,
                        1, &rootPicture);
    xcb_clear_area(xcb, 0, screen->root, 0, 0, 0, 0);
    if (previous != XCB_NONE)
        xcb_free_pixmap(xcb, previous);
    synchronize();
}

void XClient::setMonitors(const std::vector<MonitorSetup>& monitors) {
    const auto resources = own(xcb_randr_get_screen_resources_current_reply(
        xcb, xcb_randr_get_screen_resources_current(xcb, screen->root), nullptr));
    const auto current =
        own(xcb_randr_get_monitors_reply(xcb, xcb_randr_get_monitors(xcb, screen->root, 1), nullptr));
    if (!resources || !current)
        qFatal("the X server has no RandR 1.5");
    // A monitor cannot be replaced under its name: what changes goes first, what is not wanted last.
    const auto deleteFormer = [&](bool wanted) {
        for (auto it = xcb_randr_get_monitors_monitors_iterator(current.get()); it.rem;
             xcb_randr_monitor_info_next(&it))
            if (wanted == std::ranges::any_of(monitors, [&](const MonitorSetup& monitor) {
                    return atom(monitor.name.toLatin1()) == it.data->name;
                }))
                xcb_randr_delete_monitor(xcb, screen->root, it.data->name);
    };
    deleteFormer(true);
    bool first = true;
    for (const MonitorSetup& monitor : monitors) {
        SetMonitorRequest request{};
        const auto [x, y, width, height] = rectangle(monitor.rect);
        request.window = screen->root;
        request.info.name = atom(monitor.name.toLatin1());
        request.info.primary = first;
        request.info.x = x;
        request.info.y = y;
        request.info.width = width;
        request.info.height = height;
        // 96 dots per inch.
        request.info.width_in_millimeters = width * 254U / 960U;
        request.info.height_in_millimeters = height * 254U / 960U;
        if (first && resources->num_outputs > 0) {
            request.info.nOutput = 1;
            request.output = *xcb_randr_get_screen_resources_current_outputs(resources.get());
        }
        send(xcb, request);
        first = false;
    }
    deleteFormer(false);
    synchronize();
}

void XClient::removeMonitor(const QString& name) {
    xcb_randr_delete_monitor(xcb, screen->root, atom(name.toLatin1()));
    synchronize();
}

void XClient::setRootSize(QSize size) {
    const auto width = static_cast<std::uint16_t>(size.width());
    const auto height = static_cast<std::uint16_t>(size.height());
    const auto resources = own(xcb_randr_get_screen_resources_current_reply(
        xcb, xcb_randr_get_screen_resources_current(xcb, screen->root), nullptr));
    // The picture tube would not fit any more.
    if (resources && resources->num_crtcs > 0)
        xcb_randr_set_crtc_config(xcb, *xcb_randr_get_screen_resources_current_crtcs(resources.get()),
                                  XCB_CURRENT_TIME, resources->config_timestamp, 0, 0, XCB_NONE,
                                  XCB_RANDR_ROTATION_ROTATE_0, 0, nullptr);
    xcb_randr_set_screen_size(xcb, screen->root, width, height, width * 254U / 960U, height * 254U / 960U);
    synchronize();
}

xcb_window_t XClient::createWindow(const WindowOptions& options) {
    const xcb_window_t window = xcb_generate_id(xcb);
    const auto [x, y, width, height] = rectangle(options.rect);
    const std::uint32_t values[] = {options.color & 0xFFFFFFU, options.overrideRedirect ? 1U : 0U,
                                    options.eventMask};
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window, screen->root, x, y, width, height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    return window;
}

void XClient::map(xcb_window_t window) {
    xcb_map_window(xcb, window);
    synchronize();
}

void XClient::destroy(xcb_window_t window) {
    xcb_destroy_window(xcb, window);
    synchronize();
}

void XClient::setShape(xcb_window_t window, const std::vector<QRect>& rects) {
    std::vector<xcb_rectangle_t> rectangles;
    std::ranges::transform(rects, std::back_inserter(rectangles), rectangle);
    xcb_shape_rectangles(xcb, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_UNSORTED, window, 0,
                         0, static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    synchronize();
}

std::optional<MappedWindow> XClient::viewable(xcb_window_t window) {
    const auto attributesCookie = xcb_get_window_attributes(xcb, window);
    const auto geometryCookie = xcb_get_geometry(xcb, window);
    const auto originCookie = xcb_translate_coordinates(xcb, window, screen->root, 0, 0);
    const auto attributes = own(xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
    const auto geometry = own(xcb_get_geometry_reply(xcb, geometryCookie, nullptr));
    const auto origin = own(xcb_translate_coordinates_reply(xcb, originCookie, nullptr));
    if (!attributes || !geometry || !origin || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY)
        return std::nullopt;
    return MappedWindow{window, QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height),
                        attributes->override_redirect != 0};
}

std::vector<MappedWindow> XClient::mappedWindows() {
    std::vector<MappedWindow> windows;
    const auto tree = own(xcb_query_tree_reply(xcb, xcb_query_tree(xcb, screen->root), nullptr));
    for (int index = 0; tree && index < xcb_query_tree_children_length(tree.get()); ++index)
        if (const auto window = viewable(xcb_query_tree_children(tree.get())[index]))
            windows.push_back(*window);
    return windows;
}

xcb_window_t XClient::focusedWindow() {
    const auto reply = own(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
    return reply ? reply->focus : XCB_NONE;
}

void XClient::focus(xcb_window_t window) {
    xcb_set_input_focus(xcb, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    synchronize();
}

int XClient::pressedKeys() {
    synchronize();
    int count = 0;
    while (const auto event = own(xcb_poll_for_event(xcb)))
        count += (event->response_type & 0x7F) == XCB_KEY_PRESS ? 1 : 0;
    return count;
}

void XClient::touchRoot() {
    xcb_delete_property(xcb, screen->root, atom("_VISTREL_TEST_TOUCH"));
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, screen->root, atom("_VISTREL_TEST_TOUCH"),
                        XCB_ATOM_INTEGER, 32, 0, nullptr);
    synchronize();
}

std::vector<std::uint32_t> XClient::windowProperty(xcb_window_t window, const QByteArray& name) {
    const auto cookie = xcb_get_property(xcb, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024);
    const auto reply = own(xcb_get_property_reply(xcb, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + reply->value_len};
}

std::optional<MappedWindow> XClient::windowTitled(const QString& title) {
    std::vector<std::uint32_t> candidates = windowProperty(root(), "_NET_CLIENT_LIST");
    for (const MappedWindow& window : mappedWindows())
        candidates.push_back(window.id);
    for (const xcb_window_t id : candidates) {
        const auto cookie =
            xcb_get_property(xcb, 0, id, atom("_NET_WM_NAME"), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024);
        const auto name = own(xcb_get_property_reply(xcb, cookie, nullptr));
        if (name && QString::fromUtf8(static_cast<const char*>(xcb_get_property_value(name.get())),
                                      xcb_get_property_value_length(name.get())) == title)
            if (const auto window = viewable(id))
                return window;
    }
    return std::nullopt;
}

int XClient::grabKey(std::uint32_t modifiers, std::uint8_t keyCode) {
    const auto cookie = xcb_grab_key_checked(xcb, 1, screen->root, static_cast<std::uint16_t>(modifiers),
                                             keyCode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const auto error = own(xcb_request_check(xcb, cookie));
    return error ? error->error_code : 0;
}

void XClient::ungrabKey(std::uint32_t modifiers, std::uint8_t keyCode) {
    xcb_ungrab_key(xcb, keyCode, screen->root, static_cast<std::uint16_t>(modifiers));
    synchronize();
}

bool XClient::grabKeyboard() {
    const auto cookie =
        xcb_grab_keyboard(xcb, 0, screen->root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const auto reply = own(xcb_grab_keyboard_reply(xcb, cookie, nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

void XClient::ungrabKeyboard() {
    xcb_ungrab_keyboard(xcb, XCB_CURRENT_TIME);
    synchronize();
}

void XClient::setKeyRepeat(bool repeats) {
    const std::uint32_t mode = repeats ? XCB_AUTO_REPEAT_MODE_ON : XCB_AUTO_REPEAT_MODE_OFF;
    xcb_change_keyboard_control(xcb, XCB_KB_AUTO_REPEAT_MODE, &mode);
    synchronize();
}

#include "VistrelPlatform/X11/X11Connection.h"

#include <xcb/composite.h>
#include <xcb/randr.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

namespace {

bool isPresent(xcb_connection_t* connection, xcb_extension_t* extension) {
    const xcb_query_extension_reply_t* reply = xcb_get_extension_data(connection, extension);
    return reply && reply->present;
}

bool isAtLeast(std::uint32_t major, std::uint32_t minor, std::uint32_t wantedMajor,
               std::uint32_t wantedMinor) {
    return major > wantedMajor || (major == wantedMajor && minor >= wantedMinor);
}

const xcb_visualtype_t* findVisual(const xcb_screen_t* screen, xcb_visualid_t id) {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem; xcb_depth_next(&depth))
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem; xcb_visualtype_next(&visual))
            if (visual.data->visual_id == id)
                return visual.data;
    return nullptr;
}

int bitsPerPixel(const xcb_setup_t* setup, std::uint8_t depth) {
    for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem; xcb_format_next(&format))
        if (format.data->depth == depth)
            return format.data->bits_per_pixel;
    return 0;
}

} // namespace

X11Connection::X11Connection(const QByteArray& displayName)
    : xcb(xcb_connect(displayName.isEmpty() ? nullptr : displayName.constData(), nullptr)) {
    if (!isAlive())
        return;
    readScreen();
    readExtensions();
    if (available.render)
        readPictureFormats();
}

X11Connection::~X11Connection() {
    xcb_disconnect(xcb);
}

void X11Connection::readScreen() {
    const xcb_setup_t* setup = xcb_get_setup(xcb);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(setup).data;
    rootID = screen->root;
    rootDepth = screen->root_depth;
    rootVisual = screen->root_visual;
    const xcb_visualtype_t* visual = findVisual(screen, rootVisual);
    const auto localOrder =
        Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? XCB_IMAGE_ORDER_LSB_FIRST : XCB_IMAGE_ORDER_MSB_FIRST;
    plainPixels = rootDepth == 24 && bitsPerPixel(setup, rootDepth) == 32 && visual &&
                  visual->red_mask == 0xFF0000 && visual->green_mask == 0xFF00 && visual->blue_mask == 0xFF &&
                  setup->image_byte_order == localOrder;
}

void X11Connection::readExtensions() {
    for (xcb_extension_t* extension :
         {&xcb_shm_id, &xcb_render_id, &xcb_composite_id, &xcb_xfixes_id, &xcb_randr_id})
        xcb_prefetch_extension_data(xcb, extension);
    if (isPresent(xcb, &xcb_shm_id)) {
        const auto version = xcbReply<xcb_shm_query_version_reply>(xcb, xcb_shm_query_version(xcb));
        available.sharedMemory = version && isAtLeast(version->major_version, version->minor_version, 1, 2);
    }
    if (isPresent(xcb, &xcb_render_id))
        available.render =
            xcbReply<xcb_render_query_version_reply>(xcb, xcb_render_query_version(xcb, 0, 11)) != nullptr;
    if (isPresent(xcb, &xcb_composite_id) && isPresent(xcb, &xcb_xfixes_id)) {
        const auto composite =
            xcbReply<xcb_composite_query_version_reply>(xcb, xcb_composite_query_version(xcb, 0, 4));
        const auto fixes = xcbReply<xcb_xfixes_query_version_reply>(xcb, xcb_xfixes_query_version(xcb, 5, 0));
        available.composite = composite && fixes &&
                              isAtLeast(composite->major_version, composite->minor_version, 0, 2) &&
                              isAtLeast(fixes->major_version, fixes->minor_version, 2, 0);
    }
    if (isPresent(xcb, &xcb_randr_id)) {
        const auto version = xcbReply<xcb_randr_query_version_reply>(xcb, xcb_randr_query_version(xcb, 1, 5));
        available.monitors = version && isAtLeast(version->major_version, version->minor_version, 1, 5);
    }
    constexpr char waylandName[] = "XWAYLAND";
    const auto wayland = xcbReply<xcb_query_extension_reply>(
        xcb, xcb_query_extension(xcb, sizeof waylandName - 1, waylandName));
    available.wayland = wayland && wayland->present;
}

void X11Connection::readPictureFormats() {
    const auto reply = xcbReply<xcb_render_query_pict_formats_reply>(xcb, xcb_render_query_pict_formats(xcb));
    if (!reply)
        return;
    for (auto screen = xcb_render_query_pict_formats_screens_iterator(reply.get()); screen.rem;
         xcb_render_pictscreen_next(&screen))
        for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem;
             xcb_render_pictdepth_next(&depth))
            for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data); visual.rem;
                 xcb_render_pictvisual_next(&visual))
                pictureFormats.emplace(visual.data->visual, visual.data->format);
}

xcb_render_pictformat_t X11Connection::pictureFormat(xcb_visualid_t visual) const {
    const auto found = pictureFormats.find(visual);
    return found == pictureFormats.end() ? XCB_NONE : found->second;
}

bool X11Connection::synchronize() const {
    return xcbReply<xcb_get_input_focus_reply>(xcb, xcb_get_input_focus(xcb)) != nullptr;
}

void X11Connection::discardEvents() const {
    while (XcbOwned<xcb_generic_event_t>(xcb_poll_for_event(xcb))) {
    }
}

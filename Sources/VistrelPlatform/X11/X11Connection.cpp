#include "VistrelPlatform/X11/X11Connection.h"

#include <xcb/composite.h>
#include <xcb/randr.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

#include <optional>
#include <string_view>
#include <vector>

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

/// Everything there is to ask, sent before the first answer is awaited: each wait for the server delays the
/// start of the program.
struct X11Connection::Questions {
    std::optional<xcb_shm_query_version_cookie_t> sharedMemory;
    std::optional<xcb_render_query_version_cookie_t> render;
    xcb_render_query_pict_formats_cookie_t pictureFormats{};
    std::optional<xcb_composite_query_version_cookie_t> composite;
    xcb_xfixes_query_version_cookie_t fixes{};
    std::optional<xcb_randr_query_version_cookie_t> monitors;
    xcb_query_extension_cookie_t wayland{};
    std::vector<std::pair<xcb_atom_t Atoms::*, xcb_intern_atom_cookie_t>> atoms;
};

X11Connection::X11Connection(const QByteArray& displayName)
    : xcb(xcb_connect(displayName.isEmpty() ? nullptr : displayName.constData(), nullptr)) {
    if (!isAlive())
        return;
    readScreen();
    receive(ask());
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

X11Connection::Questions X11Connection::ask() const {
    Questions questions;
    constexpr std::string_view wayland = "XWAYLAND";
    questions.wayland = xcb_query_extension(xcb, static_cast<std::uint16_t>(wayland.size()), wayland.data());
    const std::pair<xcb_atom_t Atoms::*, std::string_view> names[] = {
        {&Atoms::clientList, "_NET_CLIENT_LIST"}, {&Atoms::state, "_NET_WM_STATE"},
        {&Atoms::hidden, "_NET_WM_STATE_HIDDEN"}, {&Atoms::opacity, "_NET_WM_WINDOW_OPACITY"},
        {&Atoms::compositor, "_NET_WM_CM_S0"},    {&Atoms::rootPicture, "_XROOTPMAP_ID"}};
    for (const auto& [atom, name] : names)
        questions.atoms.emplace_back(
            atom, xcb_intern_atom(xcb, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    for (xcb_extension_t* extension :
         {&xcb_shm_id, &xcb_render_id, &xcb_composite_id, &xcb_xfixes_id, &xcb_randr_id})
        xcb_prefetch_extension_data(xcb, extension);
    if (isPresent(xcb, &xcb_shm_id))
        questions.sharedMemory = xcb_shm_query_version(xcb);
    if (isPresent(xcb, &xcb_render_id)) {
        questions.render = xcb_render_query_version(xcb, 0, 11);
        questions.pictureFormats = xcb_render_query_pict_formats(xcb);
    }
    if (isPresent(xcb, &xcb_composite_id) && isPresent(xcb, &xcb_xfixes_id)) {
        questions.composite = xcb_composite_query_version(xcb, 0, 4);
        questions.fixes = xcb_xfixes_query_version(xcb, 5, 0);
    }
    if (isPresent(xcb, &xcb_randr_id))
        questions.monitors = xcb_randr_query_version(xcb, 1, 5);
    return questions;
}

void X11Connection::receive(const Questions& questions) {
    for (const auto& [atom, cookie] : questions.atoms)
        if (const auto reply = xcbReply<xcb_intern_atom_reply>(xcb, cookie))
            knownAtoms.*atom = reply->atom;
    const auto wayland = xcbReply<xcb_query_extension_reply>(xcb, questions.wayland);
    available.wayland = wayland && wayland->present;
    if (questions.sharedMemory) {
        const auto version = xcbReply<xcb_shm_query_version_reply>(xcb, *questions.sharedMemory);
        available.sharedMemory = version && isAtLeast(version->major_version, version->minor_version, 1, 2);
    }
    if (questions.render) {
        available.render = xcbReply<xcb_render_query_version_reply>(xcb, *questions.render) != nullptr;
        receivePictureFormats(questions.pictureFormats);
    }
    if (questions.composite) {
        const auto composite = xcbReply<xcb_composite_query_version_reply>(xcb, *questions.composite);
        const auto fixes = xcbReply<xcb_xfixes_query_version_reply>(xcb, questions.fixes);
        available.composite = composite && fixes &&
                              isAtLeast(composite->major_version, composite->minor_version, 0, 2) &&
                              isAtLeast(fixes->major_version, fixes->minor_version, 2, 0);
    }
    if (questions.monitors) {
        const auto version = xcbReply<xcb_randr_query_version_reply>(xcb, *questions.monitors);
        available.monitors = version && isAtLeast(version->major_version, version->minor_version, 1, 5);
    }
}

void X11Connection::receivePictureFormats(xcb_render_query_pict_formats_cookie_t cookie) {
    const auto reply = xcbReply<xcb_render_query_pict_formats_reply>(xcb, cookie);
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

#include "VistrelPlatform/X11/X11Panels.h"

#include "VistrelPlatform/X11/Xcb.h"

#include <QRect>
#include <QRgb>

#include <algorithm>
#include <array>
#include <numeric>
#include <span>

namespace {

constexpr std::uint32_t mostValues = 4096;
/// As all servers of today have them: three bytes of colour in four.
constexpr std::uint8_t plainDepth = 24;

std::vector<std::uint32_t> values(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property) {
    const auto reply = xcbReply<xcb_get_property_reply>(
        connection,
        xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, mostValues));
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

/// The part of a window that lies on the root.
QRect visiblePart(xcb_connection_t* connection, xcb_window_t window, QRect root) {
    const auto geometry = xcbReply<xcb_get_geometry_reply>(connection, xcb_get_geometry(connection, window));
    const auto origin = xcbReply<xcb_translate_coordinates_reply>(
        connection, xcb_translate_coordinates(connection, window, rootWindow(connection), 0, 0));
    if (!geometry || !origin)
        return {};
    return root & QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
}

} // namespace

std::optional<int> X11Panels::brightness() {
    xcb_connection_t* connection = toolkitConnection();
    const xcb_screen_t* screen =
        connection ? xcb_setup_roots_iterator(xcb_get_setup(connection)).data : nullptr;
    if (!screen || screen->root_depth != plainDepth)
        return std::nullopt;
    const QRect root(0, 0, screen->width_in_pixels, screen->height_in_pixels);
    const xcb_atom_t type = internAtom(connection, "_NET_WM_WINDOW_TYPE");
    const xcb_atom_t dock = internAtom(connection, "_NET_WM_WINDOW_TYPE_DOCK");
    std::array<qsizetype, 256> levels{};
    for (const xcb_window_t window :
         values(connection, screen->root, internAtom(connection, "_NET_CLIENT_LIST"))) {
        const auto types = values(connection, window, type);
        if (std::ranges::find(types, dock) == types.end())
            continue;
        const QRect part = visiblePart(connection, window, root);
        if (part.isEmpty())
            continue;
        const auto image = xcbReply<xcb_get_image_reply>(
            connection,
            xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, xcbCoordinate(part.x()),
                          xcbCoordinate(part.y()), xcbLength(part.width()), xcbLength(part.height()), ~0U));
        if (!image)
            continue;
        const std::span pixels(reinterpret_cast<const QRgb*>(xcb_get_image_data(image.get())),
                               static_cast<std::size_t>(xcb_get_image_data_length(image.get())) /
                                   sizeof(QRgb));
        for (const QRgb pixel : pixels)
            ++levels[static_cast<std::size_t>(qGray(pixel))];
    }
    const qsizetype half = std::accumulate(levels.begin(), levels.end(), qsizetype(0)) / 2;
    qsizetype darker = 0;
    for (std::size_t level = 0; level < levels.size(); ++level) {
        darker += levels[level];
        if (darker > half)
            return static_cast<int>(level);
    }
    return std::nullopt;
}

#include "VistrelPlatform/X11/X11FrozenPicture.h"

#include <xcb/render.h>

namespace {

constexpr std::uint16_t level(unsigned eightBits) {
    return static_cast<std::uint16_t>(eightBits * 0x101U);
}

/// sRGB 0.3 grey at 0.4 in the eight-bit levels that a painter uses: 77 times 102 / 255, rounded, at 102.
constexpr xcb_render_color_t haze{level(31), level(31), level(31), level(102)};

} // namespace

X11FrozenPicture::X11FrozenPicture(std::shared_ptr<X11Connection> server, PixelSize size)
    : connection(std::move(server)), pixelSize(size) {}

X11FrozenPicture::X11FrozenPicture(std::shared_ptr<X11Connection> server, PixelSize size,
                                   std::shared_ptr<SharedSegment> pixels)
    : connection(std::move(server)), pixelSize(size), memory(std::move(pixels)) {}

X11FrozenPicture::X11FrozenPicture(std::shared_ptr<X11Connection> server,
                                   std::shared_ptr<ServerPixmap> pixels)
    : connection(std::move(server)), pixelSize(pixels->size()), pixmap(std::move(pixels)) {}

void X11FrozenPicture::drawOn(xcb_connection_t* client, xcb_window_t window) const {
    if (memory || pixmap)
        drawPixels(client, window);
    const xcb_render_picture_t picture = xcb_generate_id(client);
    xcb_render_create_picture(client, picture, window, connection->pictureFormat(connection->visual()), 0,
                              nullptr);
    const xcb_rectangle_t all{0, 0, xcbLength(pixelSize.width), xcbLength(pixelSize.height)};
    xcb_render_fill_rectangles(client, XCB_RENDER_PICT_OP_OVER, picture, haze, 1, &all);
    xcb_render_free_picture(client, picture);
}

void X11FrozenPicture::drawPixels(xcb_connection_t* client, xcb_window_t window) const {
    const std::uint16_t width = xcbLength(pixelSize.width);
    const std::uint16_t height = xcbLength(pixelSize.height);
    const xcb_gcontext_t context = xcb_generate_id(client);
    const std::uint32_t withoutExposures = 0;
    xcb_create_gc(client, context, window, XCB_GC_GRAPHICS_EXPOSURES, &withoutExposures);
    if (memory)
        xcb_shm_put_image(client, window, context, width, height, 0, 0, width, height, 0, 0,
                          connection->depth(), XCB_IMAGE_FORMAT_Z_PIXMAP, 0, memory->id(), 0);
    else
        xcb_copy_area(client, pixmap->id(), window, context, 0, 0, 0, 0, width, height);
    xcb_free_gc(client, context);
}

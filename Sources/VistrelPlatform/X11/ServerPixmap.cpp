#include "VistrelPlatform/X11/ServerPixmap.h"

#include <xcb/render.h>

namespace {

/// sRGB 0.3 grey at 0.4, in the eight-bit levels that a painter uses.
constexpr unsigned hazeGrey = 77;
constexpr unsigned hazeAlpha = 102;
/// 77 times 102 / 255, rounded.
constexpr unsigned hazeGreyUnderAlpha = 31;

constexpr std::uint16_t level(unsigned eightBits) {
    return static_cast<std::uint16_t>(eightBits * 0x101U);
}
constexpr xcb_render_color_t haze{level(hazeGreyUnderAlpha), level(hazeGreyUnderAlpha),
                                  level(hazeGreyUnderAlpha), level(hazeAlpha)};
constexpr xcb_render_color_t opaqueGrey{level(hazeGrey), level(hazeGrey), level(hazeGrey), 0xFFFF};
constexpr xcb_render_color_t throughHaze{0, 0, 0, level(255 - hazeAlpha)};

} // namespace

ServerPixmap::ServerPixmap(std::shared_ptr<X11Connection> server, PixelSize size)
    : connection(std::move(server)),
      pixelSize(size),
      pixmap(xcb_generate_id(connection->get())),
      context(xcb_generate_id(connection->get())) {
    xcb_connection_t* xcb = connection->get();
    xcb_create_pixmap(xcb, connection->depth(), pixmap, connection->root(), xcbLength(size.width),
                      xcbLength(size.height));
    // Copies from the root include the windows on it and tell nothing about hidden parts.
    const std::uint32_t values[] = {XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS, 0};
    xcb_create_gc(xcb, context, pixmap, XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, values);
    const xcb_render_pictformat_t format = connection->pictureFormat(connection->visual());
    if (format != XCB_NONE) {
        renderPicture = xcb_generate_id(xcb);
        xcb_render_create_picture(xcb, renderPicture, pixmap, format, 0, nullptr);
    }
    if (format != XCB_NONE && connection->extensions().sharedPixmaps) {
        transparency = xcb_generate_id(xcb);
        xcb_render_create_solid_fill(xcb, transparency, throughHaze);
    }
}

ServerPixmap::~ServerPixmap() {
    xcb_connection_t* xcb = connection->get();
    if (transparency != XCB_NONE)
        xcb_render_free_picture(xcb, transparency);
    if (renderPicture != XCB_NONE)
        xcb_render_free_picture(xcb, renderPicture);
    xcb_free_gc(xcb, context);
    xcb_free_pixmap(xcb, pixmap);
    xcb_flush(xcb);
}

void ServerPixmap::copyFromRoot(QPoint origin) {
    isGrey = false;
    xcb_copy_area(connection->get(), connection->root(), pixmap, context, xcbCoordinate(origin.x()),
                  xcbCoordinate(origin.y()), 0, 0, xcbLength(pixelSize.width), xcbLength(pixelSize.height));
}

void ServerPixmap::copyFrom(const SharedSegment& segment) {
    isGrey = false;
    const std::uint16_t width = xcbLength(pixelSize.width);
    const std::uint16_t height = xcbLength(pixelSize.height);
    xcb_shm_put_image(connection->get(), pixmap, context, width, height, 0, 0, width, height, 0, 0,
                      connection->depth(), XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment.id(), 0);
}

void ServerPixmap::dim() {
    const xcb_rectangle_t all{0, 0, xcbLength(pixelSize.width), xcbLength(pixelSize.height)};
    xcb_render_fill_rectangles(connection->get(), XCB_RENDER_PICT_OP_OVER, renderPicture, haze, 1, &all);
}

void ServerPixmap::dimFrom(const SharedSegment& segment) {
    if (transparency == XCB_NONE) {
        copyFrom(segment);
        return dim();
    }
    // A picture through the haze's transparency over its grey is the haze over the picture.
    if (!isGrey)
        fillGrey();
    isGrey = false;
    xcb_connection_t* xcb = connection->get();
    const std::uint16_t width = xcbLength(pixelSize.width);
    const std::uint16_t height = xcbLength(pixelSize.height);
    const xcb_pixmap_t shared = xcb_generate_id(xcb);
    xcb_shm_create_pixmap(xcb, shared, connection->root(), width, height, connection->depth(), segment.id(),
                          0);
    const xcb_render_picture_t source = xcb_generate_id(xcb);
    xcb_render_create_picture(xcb, source, shared, connection->pictureFormat(connection->visual()), 0,
                              nullptr);
    xcb_render_composite(xcb, XCB_RENDER_PICT_OP_OVER, source, transparency, renderPicture, 0, 0, 0, 0, 0, 0,
                         width, height);
    xcb_render_free_picture(xcb, source);
    xcb_free_pixmap(xcb, shared);
}

void ServerPixmap::fillGrey() {
    const xcb_rectangle_t all{0, 0, xcbLength(pixelSize.width), xcbLength(pixelSize.height)};
    xcb_render_fill_rectangles(connection->get(), XCB_RENDER_PICT_OP_SRC, renderPicture, opaqueGrey, 1, &all);
    isGrey = true;
}

void ServerPixmap::rest() {
    if (transparency == XCB_NONE)
        return;
    fillGrey();
    xcb_flush(connection->get());
}

X11FrozenPicture::X11FrozenPicture(std::shared_ptr<X11Connection> server,
                                   std::shared_ptr<ServerPixmap> content)
    : connection(std::move(server)),
      pixmap(std::move(content)),
      marker(xcb_get_input_focus(connection->get())) {
    xcb_flush(connection->get());
}

X11FrozenPicture::~X11FrozenPicture() {
    if (!complete)
        xcb_discard_reply(connection->get(), marker.sequence);
}

xcb_pixmap_t X11FrozenPicture::awaitPixmap() {
    if (!complete)
        xcbReply<xcb_get_input_focus_reply>(connection->get(), marker);
    complete = true;
    return pixmap->id();
}

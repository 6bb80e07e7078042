#include "VistrelPlatform/X11/ServerPixmap.h"

#include <xcb/render.h>

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
}

ServerPixmap::~ServerPixmap() {
    xcb_connection_t* xcb = connection->get();
    if (renderPicture != XCB_NONE)
        xcb_render_free_picture(xcb, renderPicture);
    xcb_free_gc(xcb, context);
    xcb_free_pixmap(xcb, pixmap);
    xcb_flush(xcb);
}

void ServerPixmap::copyFromRoot(QPoint origin) {
    xcb_copy_area(connection->get(), connection->root(), pixmap, context, xcbCoordinate(origin.x()),
                  xcbCoordinate(origin.y()), 0, 0, xcbLength(pixelSize.width), xcbLength(pixelSize.height));
}

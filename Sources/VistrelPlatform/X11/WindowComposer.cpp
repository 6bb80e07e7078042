#include "VistrelPlatform/X11/WindowComposer.h"

#include <xcb/composite.h>
#include <xcb/shape.h>

#include <algorithm>

WindowComposer::WindowComposer(std::shared_ptr<X11Connection> server) : connection(std::move(server)) {}

void WindowComposer::compose(ServerPixmap& target, const Scene& scene) const {
    xcb_connection_t* xcb = connection->get();
    const auto& [area, windows, composited] = scene;
    target.copyFromRoot(area.topLeft());
    const xcb_xfixes_region_t ownRegion = xcb_generate_id(xcb);
    xcb_xfixes_create_region(xcb, ownRegion, 0, nullptr);
    QRect covered;
    for (const TopLevelWindow& window : windows) {
        if (!window.own)
            continue;
        const xcb_xfixes_region_t region = regionOf(window, area);
        xcb_xfixes_union_region(xcb, ownRegion, region, ownRegion);
        xcb_xfixes_destroy_region(xcb, region);
        covered |= window.rect;
    }
    covered &= area;
    xcb_xfixes_set_picture_clip_region(xcb, target.picture(), ownRegion, 0, 0);
    paintBackground(target, scene, covered);
    for (const TopLevelWindow& window : windows) {
        if (window.own || !window.rect.intersects(covered))
            continue;
        const xcb_xfixes_region_t region = regionOf(window, area);
        xcb_xfixes_intersect_region(xcb, region, ownRegion, region);
        xcb_xfixes_set_picture_clip_region(xcb, target.picture(), region, 0, 0);
        xcb_xfixes_destroy_region(xcb, region);
        paintWindow(target, area, window);
    }
    xcb_xfixes_set_picture_clip_region(xcb, target.picture(), XCB_NONE, 0, 0);
    xcb_xfixes_destroy_region(xcb, ownRegion);
}

xcb_xfixes_region_t WindowComposer::regionOf(const TopLevelWindow& window, QRect area) const {
    xcb_connection_t* xcb = connection->get();
    const xcb_xfixes_region_t region = xcb_generate_id(xcb);
    xcb_xfixes_create_region_from_window(xcb, region, window.id, XCB_SHAPE_SK_BOUNDING);
    // The shape counts from inside the border.
    const QPoint origin = window.rect.topLeft() + QPoint(window.border, window.border) - area.topLeft();
    xcb_xfixes_translate_region(xcb, region, xcbCoordinate(origin.x()), xcbCoordinate(origin.y()));
    return region;
}

void WindowComposer::paintPixmap(const ServerPixmap& target, xcb_pixmap_t source,
                                 xcb_render_pictformat_t format, QPoint sourceOrigin, QRect into) const {
    xcb_connection_t* xcb = connection->get();
    const xcb_render_picture_t picture = xcb_generate_id(xcb);
    const std::uint32_t repeat = XCB_RENDER_REPEAT_NORMAL;
    xcb_render_create_picture(xcb, picture, source, format, XCB_RENDER_CP_REPEAT, &repeat);
    xcb_render_composite(xcb, XCB_RENDER_PICT_OP_OVER, picture, XCB_NONE, target.picture(),
                         xcbCoordinate(sourceOrigin.x()), xcbCoordinate(sourceOrigin.y()), 0, 0,
                         xcbCoordinate(into.x()), xcbCoordinate(into.y()), xcbLength(into.width()),
                         xcbLength(into.height()));
    xcb_render_free_picture(xcb, picture);
}

void WindowComposer::paintBackground(const ServerPixmap& target, const Scene& scene, QRect covered) const {
    xcb_connection_t* xcb = connection->get();
    const QRect into = covered.translated(-scene.area.topLeft());
    const xcb_rectangle_t rectangle{xcbCoordinate(into.x()), xcbCoordinate(into.y()), xcbLength(into.width()),
                                    xcbLength(into.height())};
    const xcb_render_color_t black{0, 0, 0, 0xFFFF};
    xcb_render_fill_rectangles(xcb, XCB_RENDER_PICT_OP_SRC, target.picture(), black, 1, &rectangle);
    const auto announced = xcbReply<xcb_get_property_reply>(
        xcb,
        xcb_get_property(xcb, 0, connection->root(), connection->atoms().rootPicture, XCB_ATOM_PIXMAP, 0, 1));
    if (announced && announced->format == 32 && announced->value_len == 1) {
        const auto pixmap = *static_cast<const xcb_pixmap_t*>(xcb_get_property_value(announced.get()));
        paintPixmap(target, pixmap, connection->pictureFormat(connection->visual()), covered.topLeft(), into);
    } else if (!scene.composited) {
        paintPlainBackground(target, scene.area, covered);
    }
}

void WindowComposer::paintPlainBackground(const ServerPixmap& target, QRect area, QRect covered) const {
    // The protocol tells nobody what the root's background is, but a window can borrow it. Below all
    // others it shows what is there anyway.
    xcb_connection_t* xcb = connection->get();
    const xcb_window_t window = xcb_generate_id(xcb);
    const std::uint32_t values[] = {XCB_BACK_PIXMAP_PARENT_RELATIVE, 1};
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window, connection->root(), xcbCoordinate(covered.x()),
                      xcbCoordinate(covered.y()), xcbLength(covered.width()), xcbLength(covered.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT, values);
    const std::uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(xcb, window, XCB_CONFIG_WINDOW_STACK_MODE, &below);
    xcb_map_window(xcb, window);
    paintWindow(target, area, {.id = window, .rect = covered, .visual = connection->visual()});
    xcb_destroy_window(xcb, window);
}

void WindowComposer::paintWindow(const ServerPixmap& target, QRect area, const TopLevelWindow& window) const {
    xcb_connection_t* xcb = connection->get();
    const xcb_render_pictformat_t format = connection->pictureFormat(window.visual);
    if (format == XCB_NONE)
        return;
    const xcb_pixmap_t content = xcb_generate_id(xcb);
    xcb_composite_name_window_pixmap(xcb, window.id, content);
    const QRect visible = window.rect & area;
    paintPixmap(target, content, format, visible.topLeft() - window.rect.topLeft(),
                visible.translated(-area.topLeft()));
    xcb_free_pixmap(xcb, content);
}

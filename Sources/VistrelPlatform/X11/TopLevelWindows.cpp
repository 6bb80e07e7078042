#include "VistrelPlatform/X11/TopLevelWindows.h"

#include <xcb/composite.h>

#include <algorithm>
#include <span>

namespace {

/// Window managers put a client at most this deep into windows of their own.
constexpr int deepestFrame = 6;

std::span<const std::uint32_t> values(const xcb_get_property_reply_t* reply) {
    if (!reply || reply->format != 32)
        return {};
    return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply)), reply->value_len};
}

} // namespace

TopLevelWindows::Client TopLevelWindows::Client::of(xcb_connection_t* connection) {
    const xcb_setup_t* setup = xcb_get_setup(connection);
    return {setup->resource_id_base, setup->resource_id_mask};
}

TopLevelWindows::TopLevelWindows(std::shared_ptr<X11Connection> server, std::optional<Client> ownClient)
    : connection(std::move(server)), own(ownClient) {}

TopLevelWindows::Request TopLevelWindows::request() const {
    xcb_connection_t* xcb = connection->get();
    return {xcb_query_tree(xcb, connection->root()),
            xcb_get_property(xcb, 0, connection->root(), connection->atoms().clientList, XCB_ATOM_WINDOW, 0,
                             4096),
            xcb_get_selection_owner(xcb, connection->atoms().compositor)};
}

TopLevelWindows::Tree TopLevelWindows::receive(const Request& request) const {
    const auto tree = xcbReply<xcb_query_tree_reply>(connection->get(), request.tree);
    const auto clients = xcbReply<xcb_get_property_reply>(connection->get(), request.clients);
    const auto compositor = xcbReply<xcb_get_selection_owner_reply>(connection->get(), request.compositor);
    Tree result;
    result.composited = compositor && compositor->owner != XCB_NONE;
    if (tree) {
        const xcb_window_t* children = xcb_query_tree_children(tree.get());
        result.children.assign(children, children + xcb_query_tree_children_length(tree.get()));
    }
    std::ranges::copy(values(clients.get()), std::back_inserter(result.clients));
    return result;
}

TopLevelWindows::Glance TopLevelWindows::glance(const Request& request, QRect area) const {
    const Tree tree = receive(request);
    if (!own)
        return {false, tree.composited};
    std::vector<xcb_window_t> candidates;
    std::vector<xcb_window_t> managed;
    const auto isOwn = [this](xcb_window_t window) { return own->owns(window); };
    std::ranges::copy_if(tree.children, std::back_inserter(candidates), isOwn);
    std::ranges::copy_if(tree.clients, std::back_inserter(managed), isOwn);
    if (!managed.empty())
        std::ranges::copy(frames(managed), std::back_inserter(candidates));
    return {!candidates.empty() && !onScreen(candidates, area).empty(), tree.composited};
}

std::vector<TopLevelWindow> TopLevelWindows::onScreen(const std::vector<xcb_window_t>& windows,
                                                      QRect area) const {
    xcb_connection_t* xcb = connection->get();
    struct Asked {
        xcb_window_t window;
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t geometry;
    };
    std::vector<Asked> asked;
    for (const xcb_window_t window : windows)
        if (window != XCB_NONE)
            asked.push_back({window, xcb_get_window_attributes(xcb, window), xcb_get_geometry(xcb, window)});
    std::vector<TopLevelWindow> result;
    for (const Asked& row : asked) {
        const auto attributes = xcbReply<xcb_get_window_attributes_reply>(xcb, row.attributes);
        const auto geometry = xcbReply<xcb_get_geometry_reply>(xcb, row.geometry);
        if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
            attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY)
            continue;
        const int border = geometry->border_width;
        const QRect rect(geometry->x, geometry->y, geometry->width + 2 * border,
                         geometry->height + 2 * border);
        if (rect.intersects(area))
            result.push_back({row.window, rect, border, attributes->visual, own && own->owns(row.window)});
    }
    return result;
}

std::vector<xcb_window_t> TopLevelWindows::frames(const std::vector<xcb_window_t>& windows) const {
    xcb_connection_t* xcb = connection->get();
    std::vector<xcb_window_t> current = windows;
    std::vector<bool> settled(windows.size(), false);
    for (int depth = 0; depth < deepestFrame; ++depth) {
        std::vector<std::pair<std::size_t, xcb_query_tree_cookie_t>> asked;
        for (std::size_t index = 0; index < current.size(); ++index)
            if (!settled[index])
                asked.emplace_back(index, xcb_query_tree(xcb, current[index]));
        if (asked.empty())
            break;
        for (const auto& [index, cookie] : asked) {
            const auto reply = xcbReply<xcb_query_tree_reply>(xcb, cookie);
            settled[index] = !reply || reply->parent == connection->root();
            if (!reply)
                current[index] = XCB_NONE;
            else if (!settled[index])
                current[index] = reply->parent;
        }
    }
    return current;
}

std::vector<xcb_window_t> TopLevelWindows::minimised(const std::vector<xcb_window_t>& clients) const {
    xcb_connection_t* xcb = connection->get();
    std::vector<xcb_get_property_cookie_t> asked;
    asked.reserve(clients.size());
    for (const xcb_window_t client : clients)
        asked.push_back(xcb_get_property(xcb, 0, client, connection->atoms().state, XCB_ATOM_ATOM, 0, 64));
    std::vector<xcb_window_t> result;
    for (std::size_t index = 0; index < clients.size(); ++index) {
        const auto reply = xcbReply<xcb_get_property_reply>(xcb, asked[index]);
        if (std::ranges::find(values(reply.get()), connection->atoms().hidden) != values(reply.get()).end())
            result.push_back(clients[index]);
    }
    return result;
}

std::vector<xcb_window_t> TopLevelWindows::ownClients() const {
    std::vector<xcb_window_t> clients = receive(request()).clients;
    std::erase_if(clients, [this](xcb_window_t client) { return !own || !own->owns(client); });
    return clients;
}

xcb_window_t TopLevelWindows::compositorOutput() const {
    xcb_connection_t* xcb = connection->get();
    if (!connection->extensions().composite)
        return XCB_NONE;
    const auto output = xcbReply<xcb_composite_get_overlay_window_reply>(
        xcb, xcb_composite_get_overlay_window(xcb, connection->root()));
    if (!output)
        return XCB_NONE;
    xcb_composite_release_overlay_window(xcb, connection->root());
    return output->overlay_win;
}

std::vector<TopLevelWindow> TopLevelWindows::visible(QRect area) const {
    const Tree tree = receive(request());
    const xcb_window_t output = tree.composited ? compositorOutput() : XCB_NONE;
    const std::vector<xcb_window_t> clientFrames = frames(tree.clients);
    const std::vector<xcb_window_t> hidden = frames(minimised(tree.clients));
    std::vector<TopLevelWindow> windows = onScreen(tree.children, area);
    std::erase_if(windows, [&](const TopLevelWindow& window) {
        return window.id == output || std::ranges::find(hidden, window.id) != hidden.end();
    });
    // A frame that the window manager made around one of our windows belongs with it.
    for (std::size_t index = 0; own && index < clientFrames.size(); ++index)
        if (own->owns(tree.clients[index]))
            for (TopLevelWindow& window : windows)
                window.own = window.own || window.id == clientFrames[index];
    return windows;
}

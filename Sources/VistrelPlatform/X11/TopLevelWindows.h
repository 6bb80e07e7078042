#pragma once

#include "VistrelPlatform/X11/X11Connection.h"

#include <QRect>

#include <memory>
#include <optional>
#include <vector>

/// A window on the root with pixels of its own. `rect` includes the border.
struct TopLevelWindow {
    xcb_window_t id = XCB_NONE;
    QRect rect;
    int border = 0;
    xcb_visualid_t visual = XCB_NONE;
    bool own = false;
};

/// Reads which windows lie on the root, and which of them are this program's. Any thread.
class TopLevelWindows {
public:
    /// Every window that one client creates carries the client's number.
    struct Client {
        std::uint32_t base = 0;
        std::uint32_t mask = 0;
        static Client of(xcb_connection_t* connection);
        bool owns(xcb_window_t window) const { return (window & ~mask) == base; }
    };

    /// Without `own` no window is this program's.
    TopLevelWindows(std::shared_ptr<X11Connection> connection, std::optional<Client> own);

    struct Request {
        xcb_query_tree_cookie_t tree;
        xcb_get_property_cookie_t clients;
        xcb_get_selection_owner_cookie_t compositor;
    };
    struct Glance {
        /// One of our windows is on the screen within the area.
        bool anyOwn = false;
        /// A compositing manager paints the screen.
        bool composited = false;
    };
    /// Queued, so that the question costs no waiting of its own.
    Request request() const;
    Glance glance(const Request& request, QRect area) const;

    /// Everything on the screen within `area`, lowest first, without minimised windows that a compositor
    /// keeps mapped and without the compositor's own output window.
    std::vector<TopLevelWindow> visible(QRect area) const;
    /// Our windows that a window manager takes care of.
    std::vector<xcb_window_t> ownClients() const;

private:
    struct Tree {
        std::vector<xcb_window_t> children;
        std::vector<xcb_window_t> clients;
        bool composited = false;
    };
    Tree receive(const Request& request) const;
    std::vector<TopLevelWindow> onScreen(const std::vector<xcb_window_t>& windows, QRect area) const;
    /// The child of the root that each window lies in; XCB_NONE for one that has gone.
    std::vector<xcb_window_t> frames(const std::vector<xcb_window_t>& windows) const;
    std::vector<xcb_window_t> minimised(const std::vector<xcb_window_t>& clients) const;
    /// Only where a compositor runs: asked for without one the window would be created.
    xcb_window_t compositorOutput() const;

    std::shared_ptr<X11Connection> connection;
    std::optional<Client> own;
};

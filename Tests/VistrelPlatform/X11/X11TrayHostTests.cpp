#include "VistrelPlatform/X11/X11TrayHost.h"

#include "Desktop/Fixture/Waiting.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <gtest/gtest.h>

namespace {

/// A panel as the server sees it: a client that owns the tray's selection.
class Panel {
public:
    Panel() : client(testSession().displayName()) {
        window = client.createWindow({.rect = {0, 0, 10, 10}});
        take(window);
    }
    ~Panel() { take(XCB_NONE); }

    void destroyWindow() {
        client.destroy(window);
        client.synchronize();
    }

private:
    void take(xcb_window_t owner) {
        xcb_set_selection_owner(client.connection(), owner, client.atom("_NET_SYSTEM_TRAY_S0"),
                                XCB_CURRENT_TIME);
        client.synchronize();
    }

    XClient client;
    xcb_window_t window = XCB_NONE;
};

TEST(X11TrayHost, FollowsThePanelsThatComeAndGo) {
    X11TrayHost host;
    EXPECT_FALSE(host.isPresent());
    int changes = 0;
    QObject::connect(&host, &TrayHost::changed, [&changes] { ++changes; });
    {
        Panel panel;
        EXPECT_TRUE(waitUntil([&] { return host.isPresent(); }));
        EXPECT_TRUE(X11TrayHost().isPresent()) << "found by who comes later, too";
    }
    EXPECT_TRUE(waitUntil([&] { return !host.isPresent(); })) << "given up";
    {
        Panel panel;
        EXPECT_TRUE(waitUntil([&] { return host.isPresent(); }));
        panel.destroyWindow();
        EXPECT_TRUE(waitUntil([&] { return !host.isPresent(); })) << "crashed";
    }
    EXPECT_EQ(changes, 4);
}

} // namespace

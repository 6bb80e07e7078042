#include "VistrelPlatform/X11/X11TrayHost.h"

#include "VistrelPlatform/X11/X11TestSession.h"

#include <gtest/gtest.h>

TEST(X11TrayHost, FollowsThePanelsThatComeAndGo) {
    X11TrayHost host;
    EXPECT_FALSE(host.isPresent());
    int changes = 0;
    QObject::connect(&host, &TrayHost::changed, [&changes] { ++changes; });
    // A panel as the server sees it: a client that owns the tray's selection.
    XClient panel(testSession().displayName());
    for (const bool crashes : {false, true}) {
        const xcb_window_t window = panel.createWindow({.rect = {0, 0, 10, 10}});
        const auto take = [&](xcb_window_t owner) {
            xcb_set_selection_owner(panel.connection(), owner, panel.atom("_NET_SYSTEM_TRAY_S0"),
                                    XCB_CURRENT_TIME);
            panel.synchronize();
        };
        take(window);
        EXPECT_TRUE(waitUntil([&] { return host.isPresent(); }));
        EXPECT_TRUE(X11TrayHost().isPresent()) << "found by who comes later, too";
        if (!crashes)
            take(XCB_NONE);
        panel.destroy(window);
        EXPECT_TRUE(waitUntil([&] { return !host.isPresent(); })) << crashes;
    }
    EXPECT_EQ(changes, 4);
}

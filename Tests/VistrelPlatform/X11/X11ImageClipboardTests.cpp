#include "VistrelPlatform/X11/X11ImageClipboard.h"

#include "VistrelPlatform/X11/X11TestSession.h"

#include <gtest/gtest.h>

TEST(X11ImageClipboard, IsOursOnlyIfTheServerSaysSo) {
    X11ImageClipboard clipboard;
    EXPECT_TRUE(clipboard.copyPNG("first"));

    // Another program takes it, and the toolkit has not been told yet when it copies again.
    XClient& other = testSession().client();
    const xcb_window_t window = other.createWindow({.rect = {0, 0, 1, 1}});
    const xcb_atom_t selection = other.atom("CLIPBOARD");
    settle();
    xcb_set_selection_owner(other.connection(), window, selection, XCB_CURRENT_TIME);
    other.synchronize();
    EXPECT_FALSE(clipboard.copyPNG("second"));

    settle();
    EXPECT_TRUE(clipboard.copyPNG("third"));
    const auto reader =
        testSession().start(QStringLiteral("xclip"),
                            {QStringLiteral("-selection"), QStringLiteral("clipboard"),
                             QStringLiteral("-out"), QStringLiteral("-target"), QStringLiteral("image/png")});
    ASSERT_TRUE(waitUntil([&] { return !reader->isRunning(); })) << "the bytes are served by this program";
    EXPECT_EQ(reader->standardOutput(), "third");
    other.destroy(window);
}

#include "VistrelPlatform/X11/X11ScreenCapturer.h"

#include "Support/Provided.h"
#include "VistrelPlatform/X11/X11TestPictures.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <QWidget>

#include <gtest/gtest.h>

#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

constexpr QRect left{0, 0, 1000, 700};
constexpr QRect right{1000, 50, 1366, 768};
constexpr PixelSize leftSize{1000, 700};
constexpr PixelSize rightSize{1366, 768};

class X11ScreenCapturerTest : public ::testing::Test {
protected:
    X11ScreenCapturerTest() {
        useMonitors({{u"one"_s, left}, {u"two"_s, right}});
        client.setRootPicture(background);
    }

    std::shared_ptr<DisplayFilter> prepared(const char* monitor) {
        auto filter = capturer.prepare(client.atom(monitor));
        EXPECT_TRUE(filter) << filter.error().description.toStdString();
        return filter.value_or(nullptr);
    }
    QImage captureLeft() {
        const auto captured = prepared("one")->capture(leftSize);
        EXPECT_TRUE(captured);
        return captured ? opaque(captured->image) : QImage();
    }
    void raise(xcb_window_t window) {
        const std::uint32_t stack = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(client.connection(), window, XCB_CONFIG_WINDOW_STACK_MODE, &stack);
        client.synchronize();
    }
    static void open(QWidget& window, QRect rect) {
        window.setGeometry(rect);
        window.setStyleSheet(u"background: #FF00FF"_s);
        window.show();
    }
    bool shows(QPoint position) {
        return waitUntil([&] { return client.pixelAt(position) == 0xFFFF00FF; });
    }

    XClient& client = testSession().client();
    QImage background = noise(testScreenSize, 1);
    X11ScreenCapturer capturer;
};

} // namespace

TEST_F(X11ScreenCapturerTest, TakesExactPixelsOfEveryMonitorOnThreadsOfTheirOwn) {
    EXPECT_TRUE(capturer.hasPermission());
    const auto work = [this](const char* monitor, xcb_atom_t id, QRect rect) {
        const PixelSize size{rect.width(), rect.height()};
        const QImage expected = background.copy(rect);
        const auto filter = capturer.prepare(id);
        for (int round = 0; round < 10; ++round) {
            const auto filtered = (*filter)->capture(size);
            ASSERT_TRUE(filtered) << monitor;
            EXPECT_EQ(opaque(filtered->image), expected) << monitor;
            EXPECT_EQ(filtered->presentation.constBits(), filtered->image.constBits());
            EXPECT_NE(filtered->frozen, nullptr);
        }
        const auto direct = capturer.captureDirect(id, size);
        ASSERT_TRUE(direct) << monitor;
        EXPECT_EQ(opaque(direct->image), expected) << monitor;
    };
    const std::jthread one(work, "one", client.atom("one"), left);
    const std::jthread two(work, "two", client.atom("two"), right);
}

TEST_F(X11ScreenCapturerTest, NeverOverwritesAPictureInUse) {
    const auto filter = prepared("one");
    QImage first = filter->capture(leftSize)->image;
    const QImage second = noise(testScreenSize, 2);
    client.setRootPicture(second);
    const auto later = filter->capture(leftSize);
    ASSERT_TRUE(later);
    EXPECT_EQ(opaque(first), background.copy(left));
    // Once the last copy is gone the memory serves again, warm as it is.
    const auto* memory = first.constBits();
    first = QImage();
    const auto third = filter->capture(leftSize);
    ASSERT_TRUE(third);
    EXPECT_EQ(third->image.constBits(), memory);
    EXPECT_EQ(opaque(later->image), second.copy(left));
}

TEST_F(X11ScreenCapturerTest, LeavesOwnWindowsOut) {
    const struct {
        const char* name;
        std::vector<QRect> shape;
        bool foreignBelow = true;
        bool foreignAbove = false;
        bool announcedBackground = true;
    } rows[] = {
        {.name = "overTheBackground", .shape = {}, .foreignBelow = false},
        {.name = "overAnotherWindow", .shape = {}},
        {.name = "partlyHidden", .shape = {}, .foreignAbove = true},
        {.name = "shaped", .shape = {{0, 0, 50, 40}, {100, 60, 70, 30}}},
        {.name = "backgroundNobodyAnnounced", .shape = {}, .announcedBackground = false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        client.setRootPicture(background);
        if (!row.announcedBackground)
            xcb_delete_property(client.connection(), client.root(), client.atom("_XROOTPMAP_ID"));
        const xcb_window_t below = client.createWindow({.rect = {150, 150, 220, 160}, .color = 0x336699});
        const xcb_window_t above = client.createWindow({.rect = {280, 120, 60, 300}, .color = 0x996633});
        // A shape of its own, so that ours shows through it.
        client.setShape(above, {{0, 0, 60, 90}, {0, 120, 60, 100}});
        if (row.foreignBelow)
            client.map(below);
        if (row.foreignAbove)
            client.map(above);
        const QImage expected = client.pixels(left);

        QWidget window(nullptr, Qt::Window | Qt::X11BypassWindowManagerHint);
        if (!row.shape.empty()) {
            QRegion region;
            for (const QRect& rect : row.shape)
                region += rect;
            window.setMask(region);
        }
        open(window, {200, 100, 200, 150});
        ASSERT_TRUE(shows({205, 105}));
        if (row.foreignAbove)
            raise(above);
        EXPECT_EQ(captureLeft(), expected);
        window.hide();
        // Closed a moment ago, it is out of the next picture too, and so is the hole it leaves.
        EXPECT_EQ(captureLeft(), expected);
        client.destroy(below);
        client.destroy(above);
    }
}

TEST_F(X11ScreenCapturerTest, LeavesFramesOutAndHasACompositorLeaveWindowsOut) {
    testSession().startWindowManager();
    QWidget window;
    open(window, {300, 200, 240, 180});
    ASSERT_TRUE(shows({400, 300}));
    ASSERT_TRUE(waitUntil([&] { return window.frameGeometry().height() > window.height(); }));
    EXPECT_EQ(captureLeft(), background.copy(left));
    window.hide();
    ASSERT_TRUE(waitUntil([&] { return client.pixels(left) == background.copy(left); }));

    if (!provided({"picom"}))
        return;
    const auto compositor =
        testSession().start(u"picom"_s, {u"--backend"_s, u"xrender"_s, u"--config"_s, u"/dev/null"_s});
    const auto owner = [&] {
        const auto reply = xcbReply<xcb_get_selection_owner_reply>(
            client.connection(), xcb_get_selection_owner(client.connection(), client.atom("_NET_WM_CM_S0")));
        return reply ? reply->owner : xcb_window_t{XCB_NONE};
    };
    ASSERT_TRUE(waitUntil([&] { return owner() != XCB_NONE; })) << compositor->standardError().constData();
    ASSERT_TRUE(waitUntil([&] { return client.pixels(left) == background.copy(left); }));
    window.show();
    ASSERT_TRUE(shows({400, 300}));
    settle();
    EXPECT_EQ(captureLeft(), background.copy(left));
    EXPECT_TRUE(shows({400, 300})) << "it comes back by itself";
    compositor->sendSignal(SIGTERM);
    EXPECT_TRUE(waitUntil([&] { return owner() == XCB_NONE; }));
    testSession().endWindowManager();
}

TEST_F(X11ScreenCapturerTest, AnUnpluggedDisplayAndARefusedRequestAreErrors) {
    const auto filter = prepared("two");
    // The root shrinks before the monitor list does.
    client.setRootSize({1200, 800});
    const auto refused = filter->capture(rightSize);
    client.setRootSize(testScreenSize);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().domain, ErrorDomain::windowSystem);
    EXPECT_EQ(refused.error().code, XCB_MATCH);
    EXPECT_TRUE(filter->capture(rightSize));

    client.removeMonitor(u"two"_s);
    const auto captured = filter->capture(rightSize);
    const auto again = capturer.prepare(client.atom("two"));
    ASSERT_TRUE(!captured && !again);
    EXPECT_EQ(captured.error().domain, ErrorDomain::windowSystem);
    EXPECT_EQ(again.error(), captured.error());
    EXPECT_FALSE(capturer.captureDirect(client.atom("two"), rightSize));
    EXPECT_FALSE(captureLeft().isNull()) << "the other one is not affected";
}

TEST(X11ScreenCapturer, ALostServerIsAnError) {
    DesktopSession session({.screenSize = {640, 480}});
    X11ScreenCapturer capturer(session.displayName());
    const xcb_atom_t monitor = session.client().atom("screen");
    const auto filter = capturer.prepare(monitor);
    ASSERT_TRUE(filter);
    const auto before = (*filter)->capture({640, 480});
    ASSERT_TRUE(before);
    session.killServer();
    const auto captured = (*filter)->capture({640, 480});
    ASSERT_FALSE(captured);
    EXPECT_EQ(captured.error().domain, ErrorDomain::windowSystem);
    EXPECT_FALSE(capturer.prepare(monitor));
    EXPECT_FALSE(capturer.captureDirect(monitor, {640, 480}));
    EXPECT_FALSE(capturer.hasPermission());
    EXPECT_EQ(qRed(before->image.pixel(639, 479)), 0) << "what was captured stays readable";
}

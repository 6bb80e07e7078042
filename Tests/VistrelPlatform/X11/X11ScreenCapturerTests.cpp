#include "VistrelPlatform/X11/X11ScreenCapturer.h"

#include "Desktop/Fixture/Waiting.h"
#include "VistrelPlatform/X11/X11TestPictures.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <QStandardPaths>
#include <QWidget>

#include <gtest/gtest.h>

#include <csignal>
#include <thread>

namespace {

constexpr QRect left{0, 0, 1000, 700};
constexpr QRect right{1000, 50, 1366, 768};

class X11ScreenCapturerTest : public ::testing::Test {
protected:
    X11ScreenCapturerTest() {
        useMonitors({{QStringLiteral("one"), left}, {QStringLiteral("two"), right}});
        client.setRootPicture(background);
    }

    std::shared_ptr<DisplayFilter> prepared(const char* monitor) {
        auto filter = capturer.prepare(client.atom(monitor));
        EXPECT_TRUE(filter) << filter.error().description.toStdString();
        return filter.value_or(nullptr);
    }

    /// Everything the toolkit and the server have to do about windows is done.
    static void settle() {
        waitUntil([] { return false; }, std::chrono::milliseconds(100));
    }

    XClient& client = testSession().client();
    QImage background = noise(testScreenSize, 1);
    X11ScreenCapturer capturer;
};

TEST_F(X11ScreenCapturerTest, TakesExactPixelsOfEveryMonitor) {
    EXPECT_TRUE(capturer.hasPermission());
    EXPECT_TRUE(capturer.supportsDirect());
    for (const auto& [monitor, rect] : {std::pair("one", left), std::pair("two", right)}) {
        SCOPED_TRACE(monitor);
        const PixelSize size{rect.width(), rect.height()};
        const auto filtered = prepared(monitor)->capture(size);
        ASSERT_TRUE(filtered);
        EXPECT_EQ(filtered->image.format(), QImage::Format_RGB32);
        EXPECT_EQ(opaque(filtered->image), background.copy(rect));
        EXPECT_EQ(filtered->presentation.constBits(), filtered->image.constBits());
        EXPECT_NE(filtered->frozen, nullptr);
        const auto direct = capturer.captureDirect(client.atom(monitor), size);
        ASSERT_TRUE(direct);
        EXPECT_EQ(opaque(direct->image), background.copy(rect));
    }
}

TEST_F(X11ScreenCapturerTest, ReducesTheExportAndKeepsThePresentation) {
    const auto captured = prepared("one")->capture({500, 350});
    ASSERT_TRUE(captured);
    EXPECT_EQ(opaque(captured->presentation), background.copy(left));
    ASSERT_EQ(captured->image.size(), QSize(500, 350));
    for (const QPoint pixel : {QPoint(0, 0), QPoint(499, 349), QPoint(123, 45)}) {
        int sum = 0;
        for (const QPoint offset : {QPoint(0, 0), QPoint(1, 0), QPoint(0, 1), QPoint(1, 1)})
            sum += qGreen(background.pixel(2 * pixel + offset));
        EXPECT_EQ(qGreen(captured->image.pixel(pixel)), (sum + 2) / 4);
    }
}

TEST_F(X11ScreenCapturerTest, NeverOverwritesAPictureInUse) {
    const auto filter = prepared("one");
    const PixelSize size{left.width(), left.height()};
    QImage first = filter->capture(size)->image;
    const QImage second = noise(testScreenSize, 2);
    client.setRootPicture(second);
    const auto later = filter->capture(size);
    ASSERT_TRUE(later);
    EXPECT_EQ(opaque(first), background.copy(left));
    EXPECT_EQ(opaque(later->image), second.copy(left));
    // Once the last copy is gone the memory serves again, warm as it is.
    const auto* memory = first.constBits();
    first = QImage();
    const auto third = filter->capture(size);
    ASSERT_TRUE(third);
    EXPECT_EQ(third->image.constBits(), memory);
    EXPECT_EQ(opaque(later->image), second.copy(left));
}

TEST_F(X11ScreenCapturerTest, CapturesDisplaysOnThreadsOfTheirOwn) {
    const std::shared_ptr<DisplayFilter> filters[] = {prepared("one"), prepared("two")};
    const QRect rects[] = {left, right};
    int exact[] = {0, 0};
    std::vector<std::jthread> workers;
    for (std::size_t index = 0; index < 2; ++index)
        workers.emplace_back([&, index] {
            for (int round = 0; round < 10; ++round) {
                const auto captured = filters[index]->capture({rects[index].width(), rects[index].height()});
                exact[index] += captured && opaque(captured->image) == background.copy(rects[index]);
            }
        });
    workers.clear();
    EXPECT_EQ(exact[0], 10);
    EXPECT_EQ(exact[1], 10);
}

struct OwnWindowCase {
    const char* name;
    std::vector<QRect> shape;
    bool foreignBelow = false;
    bool foreignAbove = false;
    bool announcedBackground = true;
};

const OwnWindowCase ownWindowCases[] = {
    {.name = "overTheBackground", .shape = {}},
    {.name = "overAnotherWindow", .shape = {}, .foreignBelow = true},
    {.name = "partlyHidden", .shape = {}, .foreignBelow = true, .foreignAbove = true},
    {.name = "shaped", .shape = {{0, 0, 50, 40}, {100, 60, 70, 30}}, .foreignBelow = true},
    {.name = "backgroundNobodyAnnounced", .shape = {}, .foreignBelow = true, .announcedBackground = false},
};

TEST_F(X11ScreenCapturerTest, LeavesOwnWindowsOut) {
    for (const OwnWindowCase& row : ownWindowCases) {
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
        window.setGeometry(200, 100, 200, 150);
        window.setStyleSheet(QStringLiteral("background: #FF00FF"));
        if (!row.shape.empty()) {
            QRegion region;
            for (const QRect& rect : row.shape)
                region += rect;
            window.setMask(region);
        }
        window.show();
        ASSERT_TRUE(waitUntil([&] { return client.pixelAt({205, 105}) == 0xFFFF00FF; }));
        if (row.foreignAbove) {
            const std::uint32_t stack = XCB_STACK_MODE_ABOVE;
            xcb_configure_window(client.connection(), above, XCB_CONFIG_WINDOW_STACK_MODE, &stack);
            client.synchronize();
        }
        const auto captured = prepared("one")->capture({left.width(), left.height()});
        ASSERT_TRUE(captured);
        EXPECT_EQ(opaque(captured->image), expected);
        window.hide();
        // Closed a moment ago, it is out of the next picture too, and so is the hole it leaves.
        const auto after = prepared("one")->capture({left.width(), left.height()});
        ASSERT_TRUE(after);
        EXPECT_EQ(opaque(after->image), expected);
        client.destroy(below);
        client.destroy(above);
    }
}

TEST_F(X11ScreenCapturerTest, LeavesTheFrameOfAManagedWindowOut) {
    testSession().startWindowManager();
    const QImage expected = client.pixels(left);
    QWidget window;
    window.setGeometry(300, 200, 240, 180);
    window.setStyleSheet(QStringLiteral("background: #00FFFF"));
    window.show();
    ASSERT_TRUE(waitUntil([&] { return client.pixels(left) != expected; }));
    settle();
    ASSERT_GT(window.frameGeometry().height(), window.height());
    const auto captured = prepared("one")->capture({left.width(), left.height()});
    ASSERT_TRUE(captured);
    EXPECT_EQ(opaque(captured->image), expected);
    testSession().endWindowManager();
}

TEST_F(X11ScreenCapturerTest, HasACompositorLeaveOwnWindowsOut) {
    if (QStandardPaths::findExecutable(QStringLiteral("picom")).isEmpty())
        GTEST_SKIP() << "there is no compositor here";
    testSession().startWindowManager();
    const auto compositor = testSession().start(QStringLiteral("picom"),
                                                {QStringLiteral("--backend"), QStringLiteral("xrender"),
                                                 QStringLiteral("--config"), QStringLiteral("/dev/null")});
    const auto owner = [&] {
        const auto reply = xcbReply<xcb_get_selection_owner_reply>(
            client.connection(), xcb_get_selection_owner(client.connection(), client.atom("_NET_WM_CM_S0")));
        return reply ? reply->owner : xcb_window_t{XCB_NONE};
    };
    ASSERT_TRUE(waitUntil([&] { return owner() != XCB_NONE; })) << compositor->standardError().constData();
    ASSERT_TRUE(waitUntil([&] { return client.pixels(left) == background.copy(left); }));
    QWidget window;
    window.setGeometry(300, 200, 240, 180);
    window.setStyleSheet(QStringLiteral("background: #00FFFF"));
    window.show();
    ASSERT_TRUE(waitUntil([&] { return client.pixelAt({400, 300}) == 0xFF00FFFF; }));
    settle();
    const auto captured = prepared("one")->capture({left.width(), left.height()});
    ASSERT_TRUE(captured);
    EXPECT_EQ(opaque(captured->image), background.copy(left));
    // It comes back by itself.
    EXPECT_TRUE(waitUntil([&] { return client.pixelAt({400, 300}) == 0xFF00FFFF; }));
    compositor->sendSignal(SIGTERM);
    EXPECT_TRUE(waitUntil([&] { return owner() == XCB_NONE; }));
    testSession().endWindowManager();
}

TEST_F(X11ScreenCapturerTest, AnUnpluggedDisplayIsAnError) {
    const auto filter = prepared("two");
    client.removeMonitor(QStringLiteral("two"));
    const auto captured = filter->capture({right.width(), right.height()});
    ASSERT_FALSE(captured);
    EXPECT_EQ(captured.error().domain, ErrorDomain::windowSystem);
    const auto again = capturer.prepare(client.atom("two"));
    ASSERT_FALSE(again);
    EXPECT_EQ(again.error(), captured.error());
    EXPECT_FALSE(capturer.captureDirect(client.atom("two"), {right.width(), right.height()}));
    // The other one is not affected.
    EXPECT_TRUE(prepared("one")->capture({left.width(), left.height()}));
}

TEST_F(X11ScreenCapturerTest, ARefusedRequestIsAnError) {
    const auto filter = prepared("two");
    // The root shrinks before the monitor list does.
    client.setRootSize({1200, 800});
    const auto captured = filter->capture({right.width(), right.height()});
    const auto direct = capturer.captureDirect(client.atom("two"), {right.width(), right.height()});
    client.setRootSize(testScreenSize);
    ASSERT_FALSE(captured);
    EXPECT_EQ(captured.error().domain, ErrorDomain::windowSystem);
    EXPECT_EQ(captured.error().code, XCB_MATCH);
    EXPECT_EQ(opaque(filter->capture({right.width(), right.height()})->image).size(), right.size());
    EXPECT_TRUE(direct.has_value() || direct.error().domain == ErrorDomain::windowSystem);
}

TEST(X11ScreenCapturer, ALostServerIsAnError) {
    DesktopSession session({.screenSize = {640, 480}, .monitors = {}, .scaleFactors = {}});
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
    // What was captured stays readable.
    EXPECT_EQ(before->image.size(), QSize(640, 480));
    EXPECT_EQ(qRed(before->image.pixel(639, 479)), 0);
}

TEST(X11ScreenCapturer, NoServerMeansNoPermission) {
    X11ScreenCapturer capturer(QByteArray(":123456"));
    EXPECT_FALSE(capturer.hasPermission());
    const auto filter = capturer.prepare(1);
    ASSERT_FALSE(filter);
    EXPECT_EQ(filter.error().domain, ErrorDomain::windowSystem);
}

} // namespace

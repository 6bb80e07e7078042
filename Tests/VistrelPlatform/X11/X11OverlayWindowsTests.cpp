#include "VistrelPlatform/X11/X11OverlayWindows.h"

#include "VistrelPlatform/X11/X11ScreenCapturer.h"
#include "VistrelPlatform/X11/X11ScreenList.h"
#include "VistrelPlatform/X11/X11TestPictures.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <QPainter>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

namespace {

constexpr QRgb paint = qRgb(10, 200, 30);

/// Paints one colour.
class TestOverlay : public QWidget {
public:
    explicit TestOverlay(Qt::WindowFlags flags) : QWidget(nullptr, flags) {
        setAttribute(Qt::WA_OpaquePaintEvent);
    }
    int paints = 0;

protected:
    void paintEvent(QPaintEvent*) override {
        ++paints;
        QPainter(this).fillRect(rect(), QColor(paint));
    }
};

xcb_window_t windowID(const QWidget& window) {
    return static_cast<xcb_window_t>(window.windowHandle()->winId());
}

class X11OverlayWindowsTest : public ::testing::Test {
protected:
    X11OverlayWindowsTest() {
        useMonitors({{QStringLiteral("one"), left}, {QStringLiteral("oneHalf"), right}});
        client.setRootPicture(background);
        screens = list.screens();
        for (const Screen& screen : screens) {
            windows.push_back(std::make_unique<TestOverlay>(overlays.windowFlags()));
            overlays.prepare(*windows.back(), screen);
        }
    }

    void freeze(bool direct = false) {
        for (std::size_t index = 0; index < windows.size(); ++index) {
            const PixelSize size{screens[index].nativeRect.width(), screens[index].nativeRect.height()};
            const std::uint32_t display = screens[index].displayID.value_or(0);
            const auto filter = capturer.prepare(display);
            ASSERT_TRUE(filter);
            const auto captured = direct ? capturer.captureDirect(display, size) : (*filter)->capture(size);
            ASSERT_TRUE(captured);
            overlays.setFrozenPicture(*windows[index], captured->frozen);
            pictures.push_back(captured->presentation);
        }
    }
    void show() { overlays.show({windows[0].get(), windows[1].get()}); }
    void showFrozen() {
        freeze();
        show();
    }
    xcb_window_t id(std::size_t index) { return windowID(*windows[index]); }
    bool isAbove(xcb_window_t upper, xcb_window_t lower) {
        const auto mapped = client.mappedWindows();
        const auto found = std::ranges::find(mapped, lower, &MappedWindow::id);
        return std::ranges::find(found, mapped.end(), upper, &MappedWindow::id) != mapped.end();
    }
    xcb_window_t openWindow(QRect rect) {
        const xcb_window_t window = client.createWindow({.rect = rect});
        client.map(window);
        return window;
    }

    const QRect left{0, 0, 1000, 700};
    const QRect right{1000, 0, 1366, 768};
    XClient& client = testSession().client();
    const QImage background = noise(testScreenSize, 5);
    X11ScreenList list;
    X11ScreenCapturer capturer;
    X11OverlayWindows overlays;
    std::vector<Screen> screens;
    std::vector<std::unique_ptr<TestOverlay>> windows;
    std::vector<QImage> pictures;
};

} // namespace

TEST_F(X11OverlayWindowsTest, TheFirstFrameIsTheDimmedPictureOnExactlyTheDisplay) {
    showFrozen();
    // No event was handled yet: the toolkit has painted nothing.
    EXPECT_EQ(windows[0]->paints, 0);
    EXPECT_EQ(client.pixels(left), hazed(background.copy(left)));
    EXPECT_EQ(client.pixels(right), hazed(background.copy(right)));
    ASSERT_TRUE(waitUntil([&] { return client.pixelAt(right.bottomRight()) == paint; }));
    settle();
    for (const MappedWindow& window : client.mappedWindows()) {
        EXPECT_TRUE(window.overrideRedirect);
        EXPECT_EQ(window.rect, window.id == id(0) ? left : right);
    }
    QImage painted(right.size(), QImage::Format_RGB32);
    painted.fill(paint);
    EXPECT_EQ(client.pixels(right), painted);
    // Only the overlays' own monitors are covered.
    EXPECT_EQ(client.pixelAt({999, 750}), background.pixel(999, 750));

    // The toolkit repaints what was covered later; until then nothing dimmed flashes up.
    client.destroy(openWindow(left));
    EXPECT_NE(client.pixelAt({500, 300}), hazed(background).pixel(500, 300));

    overlays.hide(*windows[0]);
    EXPECT_EQ(client.pixels(left), background.copy(left));
    overlays.setFrozenPicture(*windows[0], nullptr);
    overlays.show({windows[0].get()});
    EXPECT_EQ(client.pixelAt({500, 300}), 0xFF4D4D4DU) << "plain without a picture";
}

TEST_F(X11OverlayWindowsTest, WhereTheScreenIsNotTheRootsPictureTheFirstFrameComesFromMemory) {
    for (const bool direct : {false, true}) {
        SCOPED_TRACE(direct);
        const xcb_window_t compositor = client.createWindow({.rect = {0, 0, 1, 1}});
        if (!direct)
            xcb_set_selection_owner(client.connection(), compositor, client.atom("_NET_WM_CM_S0"),
                                    XCB_CURRENT_TIME);
        client.setRootPicture(background);
        freeze(direct);
        client.setRootPicture(noise(testScreenSize, 6));
        show();
        EXPECT_EQ(client.pixels(left), hazed(background.copy(left)));
        EXPECT_EQ(client.pixels(right), hazed(background.copy(right)));
        for (const auto& window : windows)
            overlays.hide(*window);
        client.destroy(compositor);
    }
}

TEST_F(X11OverlayWindowsTest, StaysAboveWindowsThatComeLaterUnlessTheyCoverAll) {
    showFrozen();
    overlays.takeFocus(*windows[0]);
    settle();
    QWidget popup(nullptr, Qt::ToolTip | Qt::X11BypassWindowManagerHint);
    popup.setGeometry(100, 100, 80, 60);
    popup.show();
    settle();
    const xcb_window_t panel = openWindow({0, 600, 1000, 100});
    EXPECT_TRUE(waitUntil([&] { return isAbove(id(0), panel); }));
    // What is ours and was over the overlay is so again.
    EXPECT_TRUE(isAbove(windowID(popup), id(0)));

    overlays.setLevel(*windows[0], OverlayLevel::belowDialogs);
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(client.connection(), panel, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    client.synchronize();
    settle();
    EXPECT_TRUE(isAbove(panel, id(0)));
    overlays.setLevel(*windows[0], OverlayLevel::aboveEverything);
    EXPECT_TRUE(waitUntil([&] { return isAbove(id(0), panel); }));
    client.destroy(panel);

    const xcb_window_t locker = openWindow(QRect(QPoint(0, 0), testScreenSize));
    settle();
    EXPECT_TRUE(isAbove(locker, id(0)) && isAbove(locker, id(1)));
    // So the keyboard is free for it, and taken again when it has gone.
    const auto keyboardIsFree = [&] {
        const bool free = client.grabKeyboard();
        client.ungrabKeyboard();
        return free;
    };
    EXPECT_TRUE(waitUntil(keyboardIsFree));
    client.destroy(locker);
    EXPECT_TRUE(waitUntil([&] { return !keyboardIsFree(); }));
}

TEST_F(X11OverlayWindowsTest, ADialogHasItsWholeEdgeAtEveryScaleAndSize) {
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0})
        for (int side = 100; side < 108; ++side) {
            QWidget dialog;
            dialog.resize(side, side);
            dialog.setPalette(Qt::white);
            overlays.prepareDialog(dialog);
            const int pixels = qRound(side * scale);
            QImage image(pixels, pixels, QImage::Format_RGB32);
            image.setDevicePixelRatio(scale);
            dialog.render(&image);
            image.setDevicePixelRatio(1);
            const int last = pixels - 1;
            const int middle = pixels / 2;
            const std::pair<QPoint, QPoint> edges[] = {{{middle, 0}, {0, 1}},
                                                       {{middle, last}, {0, -1}},
                                                       {{0, middle}, {1, 0}},
                                                       {{last, middle}, {-1, 0}}};
            for (const auto& [edge, inwards] : edges) {
                EXPECT_NE(image.pixel(edge), image.pixel(edge + inwards)) << scale << ' ' << side;
                EXPECT_EQ(image.pixel(edge + inwards), image.pixel(edge + 2 * inwards))
                    << scale << ' ' << side;
            }
        }
}

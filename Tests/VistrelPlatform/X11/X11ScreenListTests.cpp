#include "VistrelPlatform/X11/X11ScreenList.h"

#include "Desktop/Fixture/Waiting.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

namespace {

struct LayoutCase {
    const char* name;
    std::vector<MonitorSetup> monitors;
    std::vector<double> scales;
};

// A monitor's name decides its scale here.
const std::vector<LayoutCase> layoutCases = {
    {"single", {{QStringLiteral("one"), {0, 0, 1920, 1080}}}, {1}},
    {"quarterSteps",
     {{QStringLiteral("oneQuarter"), {0, 0, 1000, 700}}, {QStringLiteral("two"), {1000, 0, 1400, 1050}}},
     {1.25, 2}},
    {"widthThatPointsCannotExpress",
     {{QStringLiteral("one"), {1366, 100, 1000, 800}}, {QStringLiteral("oneHalf"), {0, 0, 1366, 768}}},
     {1, 1.5}},
};

TEST(X11ScreenList, TellsNativeRectanglesScalesAndNumbers) {
    for (const LayoutCase& row : layoutCases) {
        SCOPED_TRACE(row.name);
        useMonitors(row.monitors);
        const X11ScreenList list;
        const std::vector<Screen> screens = list.screens();
        ASSERT_EQ(screens.size(), row.monitors.size());
        for (std::size_t index = 0; index < screens.size(); ++index) {
            const Screen& screen = screens[index];
            const MonitorSetup& monitor = row.monitors[index];
            EXPECT_EQ(screen.name, monitor.name);
            EXPECT_EQ(screen.displayID, testSession().client().atom(monitor.name.toLatin1()));
            EXPECT_EQ(screen.nativeRect, monitor.rect);
            EXPECT_EQ(screen.scale, row.scales[index]);
            EXPECT_EQ(screen.pointSize().width, monitor.rect.width() / row.scales[index]);
            ASSERT_NE(list.toolkitScreen(screen), nullptr);
            EXPECT_EQ(list.toolkitScreen(screen)->name(), monitor.name);
        }
    }
}

TEST(X11ScreenList, AnnouncesEachSettledChangeOnce) {
    useMonitors({{QStringLiteral("one"), {0, 0, 1000, 700}}});
    X11ScreenList list;
    int changes = 0;
    QObject::connect(&list, &ScreenList::changed, &list, [&] { ++changes; });
    const auto settles = [&](int expected) {
        EXPECT_TRUE(waitUntil([&] { return changes == expected; }));
        // Longer than the quiet time: a second announcement would come in it.
        waitUntil([&] { return changes > expected; }, std::chrono::milliseconds(300));
        return changes == expected;
    };
    testSession().client().setMonitors(
        {{QStringLiteral("one"), {0, 0, 1000, 700}}, {QStringLiteral("two"), {1000, 0, 800, 600}}});
    EXPECT_TRUE(settles(1));
    EXPECT_EQ(list.screens().size(), 2U);
    testSession().client().removeMonitor(QStringLiteral("two"));
    EXPECT_TRUE(settles(2));
    EXPECT_EQ(list.screens().size(), 1U);
    EXPECT_EQ(list.toolkitScreen({.name = QStringLiteral("two"), .displayID = {}, .nativeRect = {}}),
              nullptr);
}

TEST(X11ScreenList, TellsThePointerInDevicePixels) {
    const X11ScreenList list;
    testSession().input().movePointer({1777, 333});
    EXPECT_EQ(list.pointerPosition(), QPoint(1777, 333));
}

} // namespace

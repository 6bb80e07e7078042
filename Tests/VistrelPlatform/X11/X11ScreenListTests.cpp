#include "VistrelPlatform/X11/X11ScreenList.h"

#include "VistrelPlatform/X11/X11TestSession.h"

#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(X11ScreenList, TellsNativeRectanglesScalesAndNumbers) {
    // A monitor's name decides its scale here.
    const struct {
        const char* name;
        std::vector<MonitorSetup> monitors;
        std::vector<double> scales;
    } rows[] = {
        {"single", {{u"one"_s, {0, 0, 1920, 1080}}}, {1}},
        {"quarterSteps",
         {{u"oneQuarter"_s, {0, 0, 1000, 700}}, {u"two"_s, {1000, 0, 1400, 1050}}},
         {1.25, 2}},
        {"widthThatPointsCannotExpress",
         {{u"one"_s, {1366, 100, 1000, 800}}, {u"oneHalf"_s, {0, 0, 1366, 768}}},
         {1, 1.5}},
    };
    for (const auto& row : rows) {
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
        testSession().input().movePointer({1777, 333});
        EXPECT_EQ(list.pointerPosition(), QPoint(1777, 333)) << "in device pixels";
    }
}

TEST(X11ScreenList, AnnouncesEachSettledChangeOnce) {
    const MonitorSetup one{u"one"_s, {0, 0, 1000, 700}};
    const MonitorSetup two{u"two"_s, {1000, 0, 800, 600}};
    useMonitors({one});
    X11ScreenList list;
    int changes = 0;
    QObject::connect(&list, &ScreenList::changed, &list, [&] { ++changes; });
    const auto settlesWith = [&](std::size_t screens) {
        const int expected = changes + 1;
        EXPECT_TRUE(waitUntil([&] { return changes == expected; }));
        // Longer than the quiet time: a second announcement would come in it.
        waitUntil([&] { return changes > expected; }, std::chrono::milliseconds(300));
        EXPECT_EQ(changes, expected);
        EXPECT_EQ(list.screens().size(), screens);
    };
    testSession().client().setMonitors({one, two});
    settlesWith(2);
    testSession().client().removeMonitor(two.name);
    settlesWith(1);
    EXPECT_EQ(list.toolkitScreen({.name = two.name, .displayID = {}, .nativeRect = {}}), nullptr);
}

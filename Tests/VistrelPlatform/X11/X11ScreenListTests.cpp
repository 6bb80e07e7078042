#include "VistrelPlatform/X11/X11ScreenList.h"

#include "VistrelPlatform/X11/X11TestSession.h"

#include <gtest/gtest.h>

TEST(X11ScreenListTest, DisplaysThatWereGoneForAMomentHaveChanged) {
    const std::vector<MonitorSetup> layout{{QStringLiteral("one"), {0, 0, 800, 600}},
                                           {QStringLiteral("two"), {800, 0, 800, 600}}};
    useMonitors(layout);
    X11ScreenList list;
    settle();
    int changes = 0;
    QObject::connect(&list, &ScreenList::changed, &list, [&] { ++changes; });
    const std::vector<Screen> before = list.screens();
    useMonitors(layout);
    EXPECT_TRUE(waitUntil([&] { return changes > 0 && list.screens() == before; }));
}

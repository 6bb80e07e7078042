#include "VistrelPlatform/X11/X11TestSession.h"

#include "Desktop/Fixture/Waiting.h"

#include <QApplication>
#include <QScreen>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace {
DesktopSession* currentSession = nullptr;
}

DesktopSession& testSession() {
    return *currentSession;
}

void useMonitors(const std::vector<MonitorSetup>& monitors) {
    // The toolkit does not notice a monitor that only changes its rectangle without a change of mode, so
    // every layout starts from one with other names.
    const std::vector<MonitorSetup> blank{{QStringLiteral("blank"), QRect({0, 0}, testScreenSize)}};
    for (const std::vector<MonitorSetup>& layout : {blank, monitors}) {
        currentSession->client().setMonitors(layout);
        const bool noticed = waitUntil([&] {
            const QList<QScreen*> screens = QGuiApplication::screens();
            return std::ranges::equal(screens, layout, {}, &QScreen::name, &MonitorSetup::name);
        });
        if (!noticed)
            qFatal("the toolkit did not notice the monitors");
    }
}

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests))
        return RUN_ALL_TESTS();
    DesktopSession session({.screenSize = testScreenSize, .monitors = {}, .scaleFactors = {}});
    currentSession = &session;
    qputenv("DISPLAY", session.displayName());
    qputenv("QT_QPA_PLATFORM", "xcb");
    // A monitor's scale follows from its name, so that one program sees all of them.
    qputenv("QT_SCREEN_SCALE_FACTORS", "one=1;oneQuarter=1.25;oneHalf=1.5;two=2");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("XDG_RUNTIME_DIR", session.folder(QStringLiteral("runtime")).toUtf8());
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QStandardPaths::setTestModeEnabled(true);
    return RUN_ALL_TESTS();
}

#include "VistrelPlatform/X11/X11TestSession.h"

#include "Desktop/Fixture/Waiting.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QScreen>
#include <QStandardPaths>
#include <QWindow>

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

void settle() {
    struct Marker : QAbstractNativeEventFilter {
        explicit Marker(xcb_window_t its) : window(its) {
            QCoreApplication::instance()->installNativeEventFilter(this);
        }
        bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
            const auto* event = static_cast<xcb_client_message_event_t*>(message);
            const bool isOurs =
                (event->response_type & 0x7F) == XCB_CLIENT_MESSAGE && event->window == window;
            arrived += isOurs;
            return isOurs;
        }
        const xcb_window_t window;
        int arrived = 0;
    };
    QWindow window;
    window.create();
    Marker marker(static_cast<xcb_window_t>(window.winId()));
    XClient& client = currentSession->client();
    // The answers to what the toolkit does about one round come before the message of the next.
    constexpr int rounds = 4;
    for (int round = 1; round <= rounds; ++round) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = marker.window;
        message.type = client.atom("_VISTREL_TEST_MARKER");
        // Without a mask it goes to the program that made the window.
        xcb_send_event(client.connection(), 0, marker.window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&message));
        client.synchronize();
        if (!waitUntil([&] { return marker.arrived >= round; }))
            qFatal("the toolkit does not read what the server tells it");
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
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    qputenv("XDG_RUNTIME_DIR", session.folder(QStringLiteral("runtime")).toUtf8());
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QStandardPaths::setTestModeEnabled(true);
    return RUN_ALL_TESTS();
}

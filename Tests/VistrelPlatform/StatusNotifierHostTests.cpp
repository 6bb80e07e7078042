#include "VistrelPlatform/Freedesktop/StatusNotifierHost.h"

#include "VistrelPlatform/ShareTestBus.h"

#include <QDBusVariant>

#include <gtest/gtest.h>

namespace {

const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");

/// A desktop's watcher, with or without a panel that has told it to show items.
class Watcher {
public:
    Watcher(const QDBusConnection& connection, bool panel)
        : bus(connection), hasPanel(panel), peer(connection, watcher, [this](const QDBusMessage& call) {
              bus.send(call.createReply(QVariant::fromValue(QDBusVariant(hasPanel))));
          }) {}

    void setPanel(bool panel) {
        hasPanel = panel;
        bus.send(QDBusMessage::createSignal(QStringLiteral("/StatusNotifierWatcher"), watcher,
                                            panel ? QStringLiteral("StatusNotifierHostRegistered")
                                                  : QStringLiteral("StatusNotifierHostUnregistered")));
    }

private:
    QDBusConnection bus;
    bool hasPanel;
    SharePeer peer;
};

TEST(StatusNotifierHost, FollowsTheDesktopsThatComeLate) {
    ShareTestBus bus;
    StatusNotifierHost host(bus.client());
    EXPECT_FALSE(host.isPresent());
    {
        Watcher desktop(bus.peer(), false);
        desktop.setPanel(true);
        EXPECT_TRUE(waitUntil([&] { return host.isPresent(); }));
        desktop.setPanel(false);
        EXPECT_TRUE(waitUntil([&] { return !host.isPresent(); })) << "a watcher alone shows nothing";
        desktop.setPanel(true);
        EXPECT_TRUE(waitUntil([&] { return host.isPresent(); }));
    }
    EXPECT_TRUE(waitUntil([&] { return !host.isPresent(); })) << "the desktop ended";

    const Watcher desktop(bus.peer(), true);
    EXPECT_TRUE(waitUntil([&] { return host.isPresent(); }));
    StatusNotifierHost later(bus.client());
    EXPECT_TRUE(waitUntil([&] { return later.isPresent(); }));
}

TEST(StatusNotifierHost, WithoutABusThereIsNoPanel) {
    const StatusNotifierHost host(QDBusConnection(QStringLiteral("nobody")));
    EXPECT_FALSE(host.isPresent());
}

} // namespace

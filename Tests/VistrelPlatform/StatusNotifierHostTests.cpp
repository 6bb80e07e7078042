#include "VistrelPlatform/Freedesktop/StatusNotifierHost.h"
#include "VistrelPlatform/ShareTestBus.h"

#include <QDBusVariant>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(StatusNotifierHost, followsTheDesktopsThatComeAndGo) {
    const QString watcher = u"org.kde.StatusNotifierWatcher"_s;
    const ShareTestBus bus;
    StatusNotifierHost host(bus.client());
    EXPECT_FALSE(host.isPresent());
    bool hasPanel = false;
    const auto answer = [&](const QDBusMessage& call) {
        bus.peer().send(call.createReply(QVariant::fromValue(QDBusVariant(hasPanel))));
    };
    const auto setPanel = [&](bool present) {
        hasPanel = present;
        const QString news =
            present ? u"StatusNotifierHostRegistered"_s : u"StatusNotifierHostUnregistered"_s;
        bus.peer().send(QDBusMessage::createSignal(u"/StatusNotifierWatcher"_s, watcher, news));
        EXPECT_TRUE(waitUntil([&] { return host.isPresent() == present; })) << present;
    };
    {
        const SharePeer desktop(bus.peer(), watcher, answer);
        for (const bool present : {true, false, true})
            setPanel(present);
    }
    EXPECT_TRUE(waitUntil([&] { return !host.isPresent(); })) << "the desktop ended";
    const SharePeer desktop(bus.peer(), watcher, answer);
    EXPECT_TRUE(waitUntil([&] { return host.isPresent(); }));
    EXPECT_FALSE(StatusNotifierHost(QDBusConnection(u"nobody"_s)).isPresent());
}

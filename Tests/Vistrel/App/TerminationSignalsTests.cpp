#include "App/TerminationSignals.h"

#include <QCoreApplication>
#include <QSignalSpy>

#include <csignal>
#include <gtest/gtest.h>

namespace {

TEST(TerminationSignals, ArriveInTheEventLoopAndEndWithTheObject) {
    const auto earlier = std::signal(SIGTERM, SIG_IGN);
    {
        TerminationSignals signals;
        QSignalSpy received(&signals, &TerminationSignals::received);
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
            ASSERT_EQ(std::raise(number), 0);
            EXPECT_EQ(received.size(), 0) << "nothing happens inside the handler";
            EXPECT_TRUE(received.wait()) << number;
            received.clear();
        }
        // Many at once are one request to end.
        for (int count = 0; count < 100; ++count)
            ASSERT_EQ(std::raise(SIGTERM), 0);
        EXPECT_TRUE(received.wait());
        QCoreApplication::processEvents();
        EXPECT_LE(received.size(), 7);
    }
    EXPECT_EQ(std::signal(SIGTERM, earlier), SIG_IGN) << "the earlier handling is back";
}

} // namespace

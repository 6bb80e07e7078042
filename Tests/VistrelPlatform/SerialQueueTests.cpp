#include "VistrelPlatform/System/SerialQueue.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

TEST(SerialQueueTests, runsInOrderOnOneThreadAndDrains) {
    SerialQueue queue("order");
    std::vector<int> order;
    std::vector<std::thread::id> threads;
    for (int index = 0; index < 100; ++index)
        queue.post([&, index] {
            order.push_back(index);
            threads.push_back(std::this_thread::get_id());
        });
    queue.drain();
    ASSERT_EQ(order.size(), 100U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(std::count(threads.begin(), threads.end(), threads.front()), 100);
    EXPECT_NE(threads.front(), std::this_thread::get_id());
}

TEST(SerialQueueTests, destructionRunsWhatIsLeftAndWhatThatPosts) {
    int done = 0;
    {
        SerialQueue queue("rest");
        for (int index = 0; index < 10; ++index)
            queue.post([&] {
                ++done;
                queue.post([&] { ++done; });
            });
    }
    EXPECT_EQ(done, 20);
}

TEST(SerialQueueTests, manyThreadsPostAndWait) {
    SerialQueue queue("many", SerialQueue::Priority::utility);
    int sum = 0; // touched by the queue only
    std::vector<std::thread> posters;
    for (int poster = 0; poster < 4; ++poster)
        posters.emplace_back([&] {
            for (int index = 0; index < 250; ++index)
                queue.post([&] { ++sum; });
            queue.drain();
        });
    for (std::thread& poster : posters)
        poster.join();
    EXPECT_EQ(sum, 1000);
}

TEST(SerialQueueTests, workIsDestroyedBeforeTheNextRuns) {
    SerialQueue queue("captures");
    const auto token = std::make_shared<int>(0);
    long users = 0;
    queue.post([copy = token] {});
    queue.post([&] { users = token.use_count(); });
    queue.drain();
    EXPECT_EQ(users, 1);
}

} // namespace

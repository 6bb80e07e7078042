#include "VistrelPlatform/System/SerialQueue.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

TEST(SerialQueue, runsInOrderOnOneThreadAndDrains) {
    SerialQueue queue("order");
    std::vector<int> order;
    std::vector<std::thread::id> threads;
    const auto token = std::make_shared<int>(0);
    long users = 0;
    for (int index = 0; index < 100; ++index)
        queue.post([&, copy = token, index] {
            order.push_back(index);
            threads.push_back(std::this_thread::get_id());
        });
    queue.post([&] { users = token.use_count(); });
    queue.drain();
    ASSERT_EQ(order.size(), 100U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(std::count(threads.begin(), threads.end(), threads.front()), 100);
    EXPECT_NE(threads.front(), std::this_thread::get_id());
    EXPECT_EQ(users, 1) << "work is destroyed before the next runs";
}

TEST(SerialQueue, destructionRunsWhatIsLeftAndWhatThatPosts) {
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

TEST(SerialQueue, manyThreadsPostAndWait) {
    SerialQueue queue("many", SerialQueue::Priority::utility);
    int sum = 0; // touched by the queue only
    {
        std::vector<std::jthread> posters;
        for (int poster = 0; poster < 4; ++poster)
            posters.emplace_back([&] {
                for (int index = 0; index < 250; ++index)
                    queue.post([&] { ++sum; });
                queue.drain();
            });
    }
    EXPECT_EQ(sum, 1000);
}

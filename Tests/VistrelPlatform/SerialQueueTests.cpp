#include "VistrelPlatform/System/SerialQueue.h"

#include <array>
#include <gtest/gtest.h>
#include <thread>

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
        std::array<std::jthread, 4> posters;
        for (std::jthread& poster : posters)
            poster = std::jthread([&] {
                for (int index = 0; index < 250; ++index)
                    queue.post([&] { ++sum; });
                queue.drain();
            });
    }
    EXPECT_EQ(sum, 1000);
}

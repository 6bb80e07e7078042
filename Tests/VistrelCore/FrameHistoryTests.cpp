#include "VistrelCore/BufferPolicy.h"
#include "VistrelCore/RollingFrameBuffer.h"

#include <gtest/gtest.h>

#include <limits>

using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;
using Buffer = RollingFrameBuffer<int, Clock::time_point>;
constexpr Clock::time_point start{10s};

std::vector<int> valuesOf(const Buffer& buffer) {
    std::vector<int> values;
    for (const Buffer::Entry& entry : buffer.entries())
        values.push_back(entry.value);
    return values;
}

} // namespace

TEST(BufferPolicy, fitsTheBudget) {
    const std::tuple<const char*, BufferPolicy::Request, std::optional<BufferPolicy>> rows[] = {
        {"notebook", {3024, 1964, 1, 60}, BufferPolicy{60, 13, 153'851'904}},
        {"fullHD", {1920, 1080, 1, 30}, BufferPolicy{30, 7, 34'214'400}},
        {"rateIsCapped", {1920, 1080, 1, 1000}, BufferPolicy{60, 13, 52'876'800}},
        {"ratesBetweenFramesRoundUp", {1920, 1080, 1, 31}, BufferPolicy{31, 8, 37'324'800}},
        {"oddHeight", {64, 3, 1, 10}, BufferPolicy{10, 3, 7 * (192 + 128)}},
        {"rowsArePadded", {65, 2, 1, 10}, BufferPolicy{10, 3, 7 * (256 + 128)}},
        {"twoLargeDisplays", {5120, 2880, 2, 60}, std::nullopt},
        {"fewestSlotsLimitTheRate", {64, 2, 1, 60, 7 * 192}, BufferPolicy{10, 3, 7 * 192}},
        {"oneByteShort", {64, 2, 1, 60, 7 * 192 - 1}, std::nullopt},
        {"budgetIsShared", {64, 2, 3, 60, 3 * 8 * 192}, BufferPolicy{15, 4, 8 * 192}},
        {"tooSlow", {64, 2, 1, 9}, std::nullopt},
        {"negativeRate", {64, 2, 1, -60}, std::nullopt},
        {"noWidth", {0, 2, 1, 60}, std::nullopt},
        {"noHeight", {64, 0, 1, 60}, std::nullopt},
        {"noDisplay", {64, 2, 0, 60}, std::nullopt},
    };
    for (const auto& [name, request, expected] : rows)
        EXPECT_EQ(BufferPolicy::fitting(request), expected) << name;
}

TEST(FrameHistoryDeathTest, senselessNumbersStopTheProgram) {
    const auto huge = std::numeric_limits<std::int64_t>::max();
    EXPECT_DEATH(BufferPolicy::fitting({huge, 1, 1, 60}), "overflow");
    EXPECT_DEATH(BufferPolicy::fitting({huge / 4, 64, 1, 60}), "overflow");
    EXPECT_DEATH(Buffer(0ms, 1), "duration");
    EXPECT_DEATH(Buffer(1ms, 0), "room");
}

TEST(RollingFrameBuffer, keepsWhatIsYoungEnoughAndFits) {
    Buffer buffer(200ms, 3);
    buffer.append(1, start);
    buffer.append(2, start + 200ms);
    EXPECT_EQ(valuesOf(buffer), (std::vector{1, 2})) << "exactly as old as the history";
    buffer.append(3, start + 200ms + 1ns);
    EXPECT_EQ(valuesOf(buffer), (std::vector{2, 3}));
    buffer.append(4, start + 210ms);
    buffer.append(5, start + 220ms);
    buffer.append(6, start + 219ms);
    EXPECT_EQ(valuesOf(buffer), (std::vector{3, 4, 5})) << "the last is out of order";
    buffer.append(7, start + 220ms);
    EXPECT_EQ(valuesOf(buffer), (std::vector{4, 5, 7})) << "an equal time is in order";
    buffer.prune(start + 10s);
    EXPECT_TRUE(buffer.entries().empty());
    EXPECT_EQ(buffer.latest()->value, 7);
    buffer.removeAll();
    EXPECT_FALSE(buffer.latest());
}

TEST(RollingFrameBuffer, findsTheFrameThatWasShown) {
    const std::tuple<const char*, std::chrono::nanoseconds, std::chrono::nanoseconds, int> rows[] = {
        {"rewound", 100ms, 80ms, 1},
        {"exactlyAtTheTarget", 130ms, 80ms, 2},
        {"justBeforeTheTarget", 130ms - 1ns, 80ms, 1},
        {"negativeOffsetIsNone", 100ms, -80ms, 3},
        {"beforeAll", 10ms, 11ms, 0},
        {"oldestEdgeOfTheHistory", 290ms, 0ms, 3},
        {"newestWhenTheHistoryIsOver", 5s, 0ms, 3},
    };
    Buffer buffer(200ms, 10);
    buffer.append(1, start);
    buffer.append(2, start + 50ms);
    buffer.append(3, start + 90ms);
    for (const auto& [name, before, offset, expected] : rows) {
        const auto found = buffer.frame(start + before, offset);
        EXPECT_EQ(found ? found->value : 0, expected) << name;
    }
    buffer.prune(start + 5s);
    EXPECT_EQ(buffer.frame(start + 95ms, 0ms)->value, 3);
    EXPECT_FALSE(buffer.frame(start + 95ms, 10ms)) << "the newest is later than the target";
}

#include "VistrelPlatform/System/PixelBufferPool.h"
#include "VistrelPlatform/System/ProcessFootprint.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

TEST(PixelBuffer, planesHaveAlignedRows) {
    const std::tuple<int, int, std::size_t, int> rows[] = {
        {1920, 1080, 1920, 540}, {3024, 1964, 3072, 982}, {65, 3, 128, 2}, {1, 1, 64, 1}};
    for (const auto& [width, height, rowBytes, chromaRows] : rows) {
        const auto buffer = PixelBuffer::biPlanar(width, height);
        ASSERT_TRUE(buffer && buffer->planes().size() == 2);
        EXPECT_EQ(buffer->planes()[0].rows, height);
        EXPECT_EQ(buffer->planes()[1].rows, chromaRows);
        for (const PixelBuffer::Plane& plane : buffer->planes()) {
            EXPECT_EQ(plane.bytesPerRow, rowBytes);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(plane.bytes) % PixelBuffer::rowAlignment, 0U);
            std::memset(plane.row(plane.rows - 1).data(), 1, plane.bytesPerRow);
        }
    }
    EXPECT_FALSE(PixelBuffer::biPlanar(0, 5));
    EXPECT_FALSE(PixelBuffer::biPlanar(5, -1));
    EXPECT_FALSE(PixelBuffer::biPlanar(std::numeric_limits<std::int64_t>::max(), 2));
}

TEST(PixelBufferPool, handsOutAgainWhatCameBackAndMayGoBeforeItsBuffers) {
    auto pool = PixelBufferPool::create(64, 64);
    ASSERT_TRUE(pool);
    auto first = pool->take();
    const auto second = pool->take();
    ASSERT_TRUE(first && second);
    EXPECT_NE(first->planes()[0].bytes, second->planes()[0].bytes);
    const std::uint8_t* memory = first->planes()[0].bytes;
    first->attachments.insert(QStringLiteral("colorSpace"), QStringLiteral("x"));
    first.reset();
    const auto again = pool->take();
    EXPECT_EQ(again->planes()[0].bytes, memory);
    EXPECT_TRUE(again->attachments.isEmpty());
    pool.reset();
    second->planes()[1].row(31)[63] = 7;
    EXPECT_EQ(second->planes()[1].row(31)[63], 7);
}

TEST(PixelBufferPool, threadsMayShareIt) {
    const auto pool = PixelBufferPool::create(64, 64);
    const auto work = [&pool](std::uint8_t mark) {
        for (int i = 0; i < 500; ++i) {
            const auto buffer = pool->take();
            std::memset(buffer->planes()[0].bytes, mark, 64);
            EXPECT_EQ(buffer->planes()[0].row(0)[63], mark);
        }
    };
    std::jthread other(work, std::uint8_t{1});
    work(2);
}

TEST(ProcessFootprint, isTheProportionalSize) {
    EXPECT_EQ(ProcessFootprint::parse("5583-7ffe ---p 0 00:00 0 [rollup]\nRss:   9000 kB\nPss:    4321 kB\n"
                                      "Pss_Dirty: 5 kB\n"),
              4321 * 1024);
    for (const char* text : {"", "Rss: 9000 kB\n", "Pss: many kB\n", "Pss: 3 MB\n"})
        EXPECT_EQ(ProcessFootprint::parse(text), std::nullopt) << text;
    EXPECT_GT(ProcessFootprint::bytes(), 0);
}

#include "VistrelPlatform/System/PixelBufferPool.h"
#include "VistrelPlatform/System/ProcessFootprint.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

TEST(PixelBuffer, planesHaveAlignedRows) {
    struct Case {
        std::int64_t width;
        std::int64_t height;
        std::size_t rowBytes;
        std::int64_t chromaRows;
    };
    for (const Case& c :
         {Case{1920, 1080, 1920, 540}, Case{3024, 1964, 3072, 982}, Case{65, 3, 128, 2}, Case{1, 1, 64, 1}}) {
        const auto buffer = PixelBuffer::biPlanar(c.width, c.height);
        ASSERT_TRUE(buffer);
        ASSERT_EQ(buffer->planes().size(), 2U);
        EXPECT_EQ(buffer->planes()[0].rows, c.height);
        EXPECT_EQ(buffer->planes()[1].rows, c.chromaRows);
        for (const PixelBuffer::Plane& plane : buffer->planes()) {
            EXPECT_EQ(plane.bytesPerRow, c.rowBytes);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(plane.bytes) % PixelBuffer::rowAlignment, 0U);
            std::memset(plane.row(plane.rows - 1).data(), 1, plane.bytesPerRow);
        }
    }
    EXPECT_FALSE(PixelBuffer::biPlanar(0, 5));
    EXPECT_FALSE(PixelBuffer::biPlanar(5, -1));
    EXPECT_FALSE(PixelBuffer::biPlanar(std::numeric_limits<std::int64_t>::max(), 2));
}

TEST(PixelBufferPool, handsOutAgainWhatCameBack) {
    const auto pool = PixelBufferPool::create(64, 64);
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
    EXPECT_FALSE(PixelBufferPool::create(0, 64));
}

TEST(PixelBufferPool, buffersMayOutliveIt) {
    auto pool = PixelBufferPool::create(64, 64);
    const auto buffer = pool->take();
    pool.reset();
    buffer->planes()[1].row(31)[63] = 7;
    EXPECT_EQ(buffer->planes()[1].row(31)[63], 7);
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

TEST(ProcessFootprint, readsTheProportionalSize) {
    struct Case {
        const char* name;
        QByteArray text;
        std::optional<std::int64_t> expected;
    };
    for (const Case& c :
         {Case{"rollup",
               "5583-7ffe ---p 0 00:00 0 [rollup]\nRss:   9000 kB\nPss:    4321 kB\nPss_Dirty: 5 kB\n",
               4321 * 1024},
          Case{"withoutIt", "Rss: 9000 kB\n", std::nullopt}, Case{"empty", "", std::nullopt},
          Case{"noNumber", "Pss: many kB\n", std::nullopt}, Case{"otherUnit", "Pss: 3 MB\n", std::nullopt}})
        EXPECT_EQ(ProcessFootprint::parse(c.text), c.expected) << c.name;
}

TEST(ProcessFootprint, grownMemoryShowsAndGoesAgain) {
    constexpr std::int64_t size = 64 << 20;
    const std::int64_t before = ProcessFootprint::bytes();
    EXPECT_GT(before, 0);
    auto buffer = PixelBuffer::biPlanar(8192, 8192);
    for (const PixelBuffer::Plane& plane : buffer->planes())
        std::memset(plane.bytes, 1, plane.bytesPerRow * static_cast<std::size_t>(plane.rows));
    EXPECT_GT(ProcessFootprint::bytes(), before + size);
    buffer.reset();
    EXPECT_LT(ProcessFootprint::bytes(), before + size / 2);
}

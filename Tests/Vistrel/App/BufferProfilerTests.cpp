#include "App/BufferProfiler.h"
#include "Capture/PixelBufferImage.h"

#include <gtest/gtest.h>

TEST(BufferProfiler, TellsWhatAHistoryCostsOrThatItDoesNotFit) {
    QByteArray output;
    const Console console{[&](const QByteArray& bytes) { output += bytes; }, {}};
    ASSERT_TRUE(BufferProfiler::run({5120, 2880, 2, 60}, console));
    EXPECT_EQ(output, "5120×2880, 2 displays: on-demand capture (memory budget)\n");
    output.clear();
    ASSERT_TRUE(BufferProfiler::run({1024, 768, 2, 31}, console));
    const QByteArrayList lines = output.split('\n');
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], "1024×768, 2 displays, max 31 fps: effective 31 fps, 8 history slots");
    EXPECT_TRUE(lines[1].startsWith("Physical footprint MiB: baseline "));
    EXPECT_TRUE(lines[2].endsWith(" s; stream + history estimate 27 MiB")) << lines[2].constData();
}

TEST(PixelBufferImage, HasTheColoursOfTheVideo) {
    const std::tuple<const char*, int, int, int, QRgb> rows[] = {
        {"black", 16, 128, 128, qRgb(0, 0, 0)},  {"white", 235, 128, 128, qRgb(255, 255, 255)},
        {"red", 63, 102, 240, qRgb(255, 1, 0)},  {"green", 173, 42, 26, qRgb(0, 255, 1)},
        {"blue", 32, 240, 118, qRgb(1, 0, 255)}, {"beyondWhite", 255, 128, 128, qRgb(255, 255, 255)},
    };
    const auto buffer = PixelBuffer::biPlanar(3, 3);
    for (const auto& [name, luma, blue, red, expected] : rows) {
        buffer->planes()[0].row(2)[2] = std::uint8_t(luma);
        buffer->planes()[1].row(1)[2] = std::uint8_t(blue);
        buffer->planes()[1].row(1)[3] = std::uint8_t(red);
        EXPECT_EQ(imageFromPixelBuffer(*buffer).pixel(2, 2), expected) << name;
    }
}

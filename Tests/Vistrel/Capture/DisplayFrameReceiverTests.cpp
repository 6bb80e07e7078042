#include "Capture/DisplayFrameReceiver.h"
#include "Capture/PixelBufferImage.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

std::shared_ptr<PixelBuffer> picture() {
    std::shared_ptr<PixelBuffer> buffer = PixelBuffer::biPlanar(70, 5);
    std::uint8_t next = 1;
    for (const PixelBuffer::Plane& plane : buffer->planes())
        for (std::int64_t y = 0; y < plane.rows; ++y)
            std::memset(plane.row(y).data(), next++, plane.bytesPerRow);
    return buffer;
}

} // namespace

TEST(DisplayFrameReceiver, keepsItsOwnCopyOfAFrame) {
    DisplayFrameReceiver receiver({.displayID = 7,
                                   .width = 70,
                                   .height = 5,
                                   .policy = {.framesPerSecond = 10, .maximumFrames = 3, .estimatedBytes = 0},
                                   .onFailure = {}});
    const auto source = picture();
    source->attachments.insert(u"colorSpace"_s, u"sRGB"_s);
    const CaptureTime::Instant before = CaptureTime::now();
    receiver.receive({.info = StreamFrame::Info{StreamFrame::Status::complete, CaptureTime::hostTime() - 10s},
                      .image = source});
    std::optional<DisplayFrameReceiver::History::Entry> latest;
    receiver.withHistory([&](auto& frames) { latest = frames.latest(); });
    ASSERT_TRUE(latest);
    // The two clocks are read one after the other, and a busy machine may take its time between them.
    EXPECT_GE(latest->timestamp, before - 11s);
    EXPECT_LE(latest->timestamp, CaptureTime::now() - 9s);
    const PixelBuffer& copy = *latest->value.pixelBuffer;
    EXPECT_EQ(copy.attachments, source->attachments);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_NE(copy.planes()[i].bytes, source->planes()[i].bytes);
        for (std::int64_t y = 0; y < source->planes()[i].rows; ++y)
            EXPECT_TRUE(std::ranges::equal(copy.planes()[i].row(y), source->planes()[i].row(y)));
    }
}

TEST(PixelBufferImage, convertsVideoLevels) {
    struct Case {
        std::uint8_t luma, blue, red;
        QRgb expected;
    };
    for (const Case& c : {Case{16, 128, 128, qRgb(0, 0, 0)},
                          {235, 128, 128, qRgb(255, 255, 255)},
                          {63, 102, 240, qRgb(255, 0, 0)},
                          {173, 42, 26, qRgb(0, 255, 0)},
                          {32, 240, 118, qRgb(0, 0, 255)}}) {
        const auto buffer = PixelBuffer::biPlanar(3, 3);
        std::memset(buffer->planes()[0].bytes, c.luma, 3 * 64);
        for (int i = 0; i < 2 * 64; i += 2) {
            buffer->planes()[1].bytes[i] = c.blue;
            buffer->planes()[1].bytes[i + 1] = c.red;
        }
        const QImage image = imageFromPixelBuffer(*buffer);
        const QRgb got = image.pixel(2, 2);
        EXPECT_NEAR(qRed(got), qRed(c.expected), 2);
        EXPECT_NEAR(qGreen(got), qGreen(c.expected), 2);
        EXPECT_NEAR(qBlue(got), qBlue(c.expected), 2);
    }
}

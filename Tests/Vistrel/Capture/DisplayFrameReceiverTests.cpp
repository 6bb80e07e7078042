#include "Capture/DisplayFrameReceiver.h"
#include "Capture/PixelBufferImage.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace Qt::StringLiterals;

using namespace std::chrono_literals;

namespace {

using Status = StreamFrame::Status;

std::shared_ptr<PixelBuffer> picture(std::int64_t width = 70, std::int64_t height = 5) {
    std::shared_ptr<PixelBuffer> buffer = PixelBuffer::biPlanar(width, height);
    std::uint8_t next = 1;
    for (const PixelBuffer::Plane& plane : buffer->planes())
        for (std::int64_t y = 0; y < plane.rows; ++y)
            std::memset(plane.row(y).data(), next++, plane.bytesPerRow);
    return buffer;
}

StreamFrame frameOf(std::shared_ptr<const PixelBuffer> image, std::chrono::nanoseconds age = 0ns) {
    return {.info = StreamFrame::Info{Status::complete, CaptureTime::hostTime() - age},
            .image = std::move(image)};
}

class Receiver : public DisplayFrameReceiver {
public:
    explicit Receiver(std::function<void()> failed = {})
        : DisplayFrameReceiver({.displayID = 7,
                                .width = 70,
                                .height = 5,
                                .policy = {.framesPerSecond = 10, .maximumFrames = 3, .estimatedBytes = 0},
                                .onFailure = std::move(failed)}) {}

    std::optional<History::Entry> latest() {
        std::optional<History::Entry> result;
        withHistory([&](History& frames) { result = frames.latest(); });
        return result;
    }
};

} // namespace

TEST(DisplayFrameReceiver, keepsItsOwnCopyOfAFrame) {
    Receiver receiver;
    const auto source = picture();
    source->attachments.insert(u"colorSpace"_s, u"sRGB"_s);
    const CaptureTime::Instant before = CaptureTime::now();
    receiver.receive(frameOf(source, 20ms));
    const auto latest = receiver.latest();
    ASSERT_TRUE(latest);
    // The two clocks are read one after the other.
    EXPECT_GE(latest->timestamp, before - 21ms);
    EXPECT_LE(latest->timestamp, CaptureTime::now() - 19ms);
    const PixelBuffer& copy = *latest->value.pixelBuffer;
    EXPECT_EQ(copy.attachments, source->attachments);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_NE(copy.planes()[i].bytes, source->planes()[i].bytes);
        for (std::int64_t y = 0; y < source->planes()[i].rows; ++y)
            EXPECT_TRUE(std::ranges::equal(copy.planes()[i].row(y), source->planes()[i].row(y)));
    }
}

TEST(DisplayFrameReceiver, ignoresWhatIsNoCompleteFrameOrComesTooLate) {
    static std::uint8_t bytes[2048] = {};
    using Planes = std::vector<PixelBuffer::Plane>;
    const std::function<void(StreamFrame&)> cases[] = {
        [](StreamFrame& f) { f.isValid = false; },
        [](StreamFrame& f) { f.isDataReady = false; },
        [](StreamFrame& f) { f.info->status = Status::idle; },
        [](StreamFrame& f) { f.info->displayTime.reset(); },
        [](StreamFrame& f) { f.image = picture(70, 6); },
        [](StreamFrame& f) {
            f.image = std::make_shared<PixelBuffer>(70, 5, Planes{{bytes, 128, 5}, {nullptr, 128, 3}});
        },
    };
    int failures = 0;
    Receiver receiver([&failures] { ++failures; });
    for (const auto& spoil : cases) {
        StreamFrame frame = frameOf(picture());
        spoil(frame);
        receiver.receive(frame);
        EXPECT_FALSE(receiver.latest()) << &spoil - cases;
    }
    receiver.receive(frameOf(picture()));
    EXPECT_TRUE(receiver.latest());
    receiver.streamDidStop({ErrorDomain::windowSystem, 3, u"the display is gone"_s});
    EXPECT_EQ(failures, 1);
    receiver.receive(frameOf(picture()));
    EXPECT_FALSE(receiver.latest()) << "nothing is kept once it is over";
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

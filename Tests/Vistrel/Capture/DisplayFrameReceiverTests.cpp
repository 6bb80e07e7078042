#include "Capture/DisplayFrameReceiver.h"
#include "Capture/PixelBufferImage.h"

#include <gtest/gtest.h>

#include <cstring>

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

    std::size_t count() {
        std::size_t result = 0;
        withHistory([&](History& frames) { result = frames.entries().size(); });
        return result;
    }
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
    source->attachments.insert(QStringLiteral("colorSpace"), QStringLiteral("sRGB"));
    receiver.receive(frameOf(source));
    const auto latest = receiver.latest();
    ASSERT_TRUE(latest);
    EXPECT_EQ(latest->value.displayID, 7U);
    EXPECT_EQ(latest->value.timestamp, latest->timestamp);
    const PixelBuffer& copy = *latest->value.pixelBuffer;
    EXPECT_EQ(copy.attachments, source->attachments);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_NE(copy.planes()[i].bytes, source->planes()[i].bytes);
        for (std::int64_t y = 0; y < source->planes()[i].rows; ++y)
            EXPECT_TRUE(std::ranges::equal(copy.planes()[i].row(y), source->planes()[i].row(y)));
    }
}

TEST(DisplayFrameReceiver, ignoresWhatIsNoCompleteFrame) {
    static std::uint8_t bytes[2048] = {};
    using Planes = std::vector<PixelBuffer::Plane>;
    const std::pair<const char*, std::function<void(StreamFrame&)>> cases[] = {
        {"invalid", [](StreamFrame& f) { f.isValid = false; }},
        {"notReady", [](StreamFrame& f) { f.isDataReady = false; }},
        {"withoutInfo", [](StreamFrame& f) { f.info.reset(); }},
        {"withoutStatus", [](StreamFrame& f) { f.info->status.reset(); }},
        {"idle", [](StreamFrame& f) { f.info->status = Status::idle; }},
        {"withoutTime", [](StreamFrame& f) { f.info->displayTime.reset(); }},
        {"withoutImage", [](StreamFrame& f) { f.image.reset(); }},
        {"otherSize", [](StreamFrame& f) { f.image = picture(70, 6); }},
        {"onePlane",
         [](StreamFrame& f) {
             f.image = std::make_shared<PixelBuffer>(70, 5, Planes{{bytes, 128, 5}});
         }},
        {"planeWithoutBytes",
         [](StreamFrame& f) {
             f.image = std::make_shared<PixelBuffer>(70, 5, Planes{{bytes, 128, 5}, {nullptr, 128, 3}});
         }},
    };
    Receiver receiver;
    for (const auto& [name, spoil] : cases) {
        StreamFrame frame = frameOf(picture());
        spoil(frame);
        receiver.receive(frame);
        EXPECT_FALSE(receiver.latest()) << name;
    }
    receiver.streamDidOutput(frameOf(picture()), DisplayFrameReceiver::OutputType::audio);
    EXPECT_FALSE(receiver.latest());
}

TEST(DisplayFrameReceiver, keepsTheLatestByTheTimeTheyWereShown) {
    Receiver receiver;
    const CaptureTime::Instant before = CaptureTime::now();
    for (const auto age : {50ms, 40ms, 30ms, 35ms, 20ms})
        receiver.receive(frameOf(picture(), age));
    EXPECT_EQ(receiver.count(), 3U);
    // The two clocks are read one after the other.
    constexpr auto reading = 1ms;
    EXPECT_GE(receiver.latest()->timestamp, before - 20ms - reading);
    EXPECT_LE(receiver.latest()->timestamp, CaptureTime::now() - 20ms + reading);
}

TEST(DisplayFrameReceiver, nothingIsKeptOnceItIsOver) {
    int failures = 0;
    Receiver receiver([&failures] { ++failures; });
    receiver.receive(frameOf(picture()));
    receiver.streamDidStop({ErrorDomain::windowSystem, 3, QStringLiteral("the display is gone")});
    EXPECT_EQ(failures, 1);
    EXPECT_FALSE(receiver.latest());
    receiver.receive(frameOf(picture()));
    EXPECT_FALSE(receiver.latest());
    receiver.invalidate();
    EXPECT_EQ(failures, 1);
}

TEST(PixelBufferImage, convertsVideoLevels) {
    struct Case {
        const char* name;
        std::uint8_t luma;
        std::uint8_t blue;
        std::uint8_t red;
        QRgb expected;
    };
    for (const Case& c :
         {Case{"black", 16, 128, 128, qRgb(0, 0, 0)}, Case{"white", 235, 128, 128, qRgb(255, 255, 255)},
          Case{"belowBlack", 0, 128, 128, qRgb(0, 0, 0)}, Case{"red", 63, 102, 240, qRgb(255, 0, 0)},
          Case{"green", 173, 42, 26, qRgb(0, 255, 0)}, Case{"blue", 32, 240, 118, qRgb(0, 0, 255)}}) {
        const auto buffer = PixelBuffer::biPlanar(3, 3);
        std::memset(buffer->planes()[0].bytes, c.luma, 3 * 64);
        for (int i = 0; i < 2 * 64; i += 2) {
            buffer->planes()[1].bytes[i] = c.blue;
            buffer->planes()[1].bytes[i + 1] = c.red;
        }
        const QImage image = imageFromPixelBuffer(*buffer);
        ASSERT_EQ(image.size(), QSize(3, 3));
        const QRgb got = image.pixel(2, 2);
        EXPECT_NEAR(qRed(got), qRed(c.expected), 2) << c.name;
        EXPECT_NEAR(qGreen(got), qGreen(c.expected), 2) << c.name;
        EXPECT_NEAR(qBlue(got), qBlue(c.expected), 2) << c.name;
        EXPECT_EQ(qAlpha(got), 255);
    }
    EXPECT_TRUE(imageFromPixelBuffer(PixelBuffer(3, 3, {})).isNull());
}

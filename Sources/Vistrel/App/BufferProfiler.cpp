#include "App/BufferProfiler.h"

#include "Capture/CaptureError.h"
#include "Capture/DisplayFrameReceiver.h"
#include "Capture/PixelBufferImage.h"
#include "VistrelCore/CheckedArithmetic.h"
#include "VistrelPlatform/System/ProcessFootprint.h"

#include <cstring>

namespace {

constexpr double bytesPerMiB = 1'048'576;

struct Display {
    std::unique_ptr<DisplayFrameReceiver> receiver;
    StreamFrame frame;
};

struct Footprints {
    std::int64_t baseline = 0;
    std::int64_t buffers = 0;
    std::int64_t conversion = 0;
    std::int64_t released = 0;
};

std::shared_ptr<const PixelBuffer> syntheticPicture(const BufferProfiler::Request& request) {
    constexpr int lumaByte = 0x80;
    constexpr int chromaByte = 0x40;
    std::shared_ptr<PixelBuffer> buffer = PixelBuffer::biPlanar(request.width, request.height);
    for (std::size_t i = 0; buffer && i < buffer->planes().size(); ++i) {
        const PixelBuffer::Plane& plane = buffer->planes()[i];
        std::memset(plane.bytes, i == 0 ? lumaByte : chromaByte,
                    plane.bytesPerRow * static_cast<std::size_t>(plane.rows));
    }
    return buffer;
}

Result<std::vector<Display>> makeDisplays(const BufferProfiler::Request& request,
                                          const BufferPolicy& policy) {
    std::vector<Display> displays;
    for (std::int64_t i = 0; i < request.displays; ++i) {
        Display display;
        display.receiver = std::make_unique<DisplayFrameReceiver>(DisplayFrameReceiver::Setup{
            static_cast<std::uint32_t>(i), request.width, request.height, policy, {}});
        display.frame.image = syntheticPicture(request);
        if (!display.frame.image)
            return tl::unexpected(captureError(CaptureError::encode));
        displays.push_back(std::move(display));
    }
    return displays;
}

/// Feeds every display three histories full of frames and returns the seconds that took.
double feed(std::vector<Display>& displays, const BufferPolicy& policy) {
    const CaptureTime::Instant start = CaptureTime::now();
    for (std::int64_t i = 0; i < 3 * policy.maximumFrames; ++i)
        for (Display& display : displays) {
            display.frame.info = StreamFrame::Info{StreamFrame::Status::complete, CaptureTime::hostTime()};
            display.receiver->receive(display.frame);
        }
    return std::chrono::duration<double>(CaptureTime::now() - start).count();
}

/// The picture that was shown a moment ago on each display.
std::vector<QImage> convert(const std::vector<Display>& displays) {
    std::vector<QImage> images;
    for (const Display& display : displays) {
        const CaptureTime::Instant now = CaptureTime::now();
        std::optional<DisplayFrameReceiver::History::Entry> found;
        display.receiver->withHistory([&](DisplayFrameReceiver::History& history) {
            history.prune(now);
            found = history.frame(now, BufferPolicy::rewind);
        });
        if (found)
            images.push_back(imageFromPixelBuffer(*found->value.pixelBuffer));
    }
    return images;
}

QString mebibytes(std::int64_t bytes) {
    return QString::number(static_cast<double>(bytes) / bytesPerMiB, 'f', 1);
}

} // namespace

Result<void> BufferProfiler::run(const Request& request, const Console& console) {
    const QString subject =
        QStringLiteral("%1×%2, %3 displays").arg(request.width).arg(request.height).arg(request.displays);
    const auto policy =
        BufferPolicy::fitting({request.width, request.height, request.displays, request.maximumFPS});
    if (!policy) {
        console.printLine(subject + QStringLiteral(": on-demand capture (memory budget)"));
        return {};
    }
    Footprints footprints;
    footprints.baseline = ProcessFootprint::bytes();
    auto displays = makeDisplays(request, *policy);
    if (!displays)
        return tl::unexpected(displays.error());
    const double workload = feed(*displays, *policy);
    footprints.buffers = ProcessFootprint::bytes();
    std::vector<QImage> images = convert(*displays);
    footprints.conversion = ProcessFootprint::bytes();
    images.clear();
    displays->clear();
    footprints.released = ProcessFootprint::bytes();

    const std::int64_t estimate = CheckedArithmetic::product(policy->estimatedBytes, request.displays);
    console.printLine(subject + QStringLiteral(", max %1 fps: effective %2 fps, %3 history slots")
                                    .arg(request.maximumFPS)
                                    .arg(policy->framesPerSecond)
                                    .arg(policy->maximumFrames));
    console.printLine(
        QStringLiteral("Physical footprint MiB: baseline %1, buffers %2, conversion %3, released %4")
            .arg(mebibytes(footprints.baseline), mebibytes(footprints.buffers),
                 mebibytes(footprints.conversion), mebibytes(footprints.released)));
    console.printLine(QStringLiteral("History copy workload: %1 s; stream + history estimate %2 MiB")
                          .arg(workload, 0, 'f', 3)
                          .arg(estimate / static_cast<std::int64_t>(bytesPerMiB)));
    console.printLine(QStringLiteral("Historical synthetic buffer measurement; normal Vistrel captures on "
                                     "demand with no background stream."));
    return {};
}

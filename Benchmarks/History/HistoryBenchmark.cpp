// Keeping a frame in the history against a bare copy of the same bytes into as many buffers, in turns.

#include "Capture/DisplayFrameReceiver.h"

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

double secondsSince(CaptureTime::Instant start) {
    return std::chrono::duration<double>(CaptureTime::now() - start).count();
}

std::shared_ptr<PixelBuffer> filledBuffer(std::int64_t width, std::int64_t height) {
    std::shared_ptr<PixelBuffer> buffer = PixelBuffer::biPlanar(width, height);
    for (const PixelBuffer::Plane& plane : buffer->planes())
        std::memset(plane.bytes, 0x55, plane.bytesPerRow * static_cast<std::size_t>(plane.rows));
    return buffer;
}

double median(std::vector<double> values) {
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return values[values.size() / 2];
}

void keepFrame(benchmark::State& state) {
    const std::int64_t width = state.range(0);
    const std::int64_t height = state.range(1);
    const BufferPolicy policy = BufferPolicy::fitting({width, height, 1, 60}).value();
    DisplayFrameReceiver receiver({1, width, height, policy, {}});
    StreamFrame frame;
    frame.image = filledBuffer(width, height);
    std::vector<std::shared_ptr<PixelBuffer>> ring;
    // The history holds its frames and one more is on its way.
    for (std::int64_t i = 0; i <= policy.maximumFrames; ++i)
        ring.push_back(filledBuffer(width, height));

    std::vector<double> kept;
    std::vector<double> copied;
    std::size_t turn = 0;
    const auto step = [&](bool counts) {
        const CaptureTime::Instant copyStart = CaptureTime::now();
        const auto& target = ring[turn++ % ring.size()];
        for (std::size_t i = 0; i < target->planes().size(); ++i) {
            const PixelBuffer::Plane& plane = target->planes()[i];
            std::memcpy(plane.bytes, frame.image->planes()[i].bytes,
                        plane.bytesPerRow * static_cast<std::size_t>(plane.rows));
        }
        const double copySeconds = secondsSince(copyStart);

        frame.info = StreamFrame::Info{StreamFrame::Status::complete, CaptureTime::hostTime()};
        const CaptureTime::Instant start = CaptureTime::now();
        receiver.receive(frame);
        const double seconds = secondsSince(start);
        if (counts) {
            copied.push_back(copySeconds);
            kept.push_back(seconds);
        }
        return seconds;
    };
    for (std::int64_t i = 0; i < 2 * policy.maximumFrames; ++i)
        step(false);
    for (auto _ : state)
        state.SetIterationTime(step(true));
    state.counters["reference_ms"] = median(copied) * 1000;
    state.counters["speed_ratio"] = median(copied) / median(kept);
}

BENCHMARK(keepFrame)
    ->Args({1920, 1080})
    ->Args({3840, 2160})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(200);

} // namespace

BENCHMARK_MAIN();

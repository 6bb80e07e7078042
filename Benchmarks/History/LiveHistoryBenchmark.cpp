// The frame history fed by a real display on which something moves: what a second of it costs, at 30 and 60
// frames a second. Nothing of this runs in normal operation.

#include "LiveSource.h"

#include "Capture/DisplayFrameReceiver.h"
#include "Freeze/DisplayConfigurations.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <thread>

namespace {

double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double secondsSince(CaptureTime::Instant start) {
    return std::chrono::duration<double>(CaptureTime::now() - start).count();
}

/// A window that is somewhere else on every frame, as a film or a dragged window is.
class Animation {
public:
    Animation(XClient& xClient, QSize area) : client(xClient) {
        window = client.createWindow({.rect = {0, 0, area.width(), area.height()}, .color = 0xFF3366CC});
        client.map(window);
    }
    void step() {
        const std::uint32_t values[] = {static_cast<std::uint32_t>(16 * (turn % 32)),
                                        static_cast<std::uint32_t>(8 * (turn % 32))};
        ++turn;
        xcb_configure_window(client.connection(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
        client.synchronize();
    }

private:
    XClient& client;
    xcb_window_t window = XCB_NONE;
    int turn = 0;
};

void liveHistory(benchmark::State& state, QSize screen, int framesPerSecond) {
    DesktopSession desktop({.screenSize = screen});
    desktop.client().setRootPicture(detailedPicture(screen));
    Animation animation(desktop.client(), screen / 3);
    const auto source = LiveSource::create(desktop.displayName(), screen.width(), screen.height());
    const auto policy = BufferPolicy::fitting({screen.width(), screen.height(), 1, framesPerSecond});
    if (!source || !policy)
        return state.SkipWithError("no damage, no shared memory, or no room for a history");
    DisplayFrameReceiver receiver({1, screen.width(), screen.height(), *policy, {}});

    std::vector<double> kept;
    std::int64_t pixels = 0;
    const CaptureTime::Instant began = CaptureTime::now();
    const double processorBegan = processorSeconds();
    CaptureTime::Instant due = began;
    for (auto _ : state) {
        animation.step();
        const CaptureTime::Instant start = CaptureTime::now();
        const StreamFrame frame = source->next();
        const CaptureTime::Instant keeping = CaptureTime::now();
        receiver.streamDidOutput(frame, DisplayFrameReceiver::OutputType::screen);
        kept.push_back(secondsSince(keeping));
        state.SetIterationTime(secondsSince(start));
        pixels += source->pixelsRead();
        due += std::chrono::microseconds(1'000'000 / framesPerSecond);
        std::this_thread::sleep_until(std::chrono::steady_clock::now() + (due - CaptureTime::now()));
    }
    const double wall = secondsSince(began);
    const auto frames = static_cast<double>(state.iterations());
    state.counters["fps"] = frames / wall;
    state.counters["keep_ms"] = median(kept) * 1000;
    state.counters["cpu_percent"] = 100 * (processorSeconds() - processorBegan) / wall;
    state.counters["megapixels_per_frame"] = static_cast<double>(pixels) / frames / 1e6;
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (const QSize screen : {QSize(1920, 1080), QSize(3840, 2160)})
        for (const int rate : {30, 60})
            benchmark::RegisterBenchmark(
                QStringLiteral("%1x%2/%3fps")
                    .arg(screen.width())
                    .arg(screen.height())
                    .arg(rate)
                    .toStdString()
                    .c_str(),
                [screen, rate](benchmark::State& state) { liveHistory(state, screen, rate); })
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond)
                ->Iterations(2 * rate);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

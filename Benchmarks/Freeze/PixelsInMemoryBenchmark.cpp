// The pixels of all displays in memory, through prepared filters on one thread per display, against a
// warmed ShmGetImage of the same displays on one connection, turn by turn.

#include "DisplayConfigurations.h"

#include "VistrelPlatform/X11/SharedSegment.h"
#include "VistrelPlatform/X11/X11ScreenCapturer.h"

#include <QtConcurrent>

#include <benchmark/benchmark.h>

namespace {

double elapsedSeconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

/// Shared segments of all displays, filled in one go.
class PlainReader {
public:
    PlainReader(const DesktopSession& desktop, const std::vector<MonitorSetup>& displays)
        : connection(std::make_shared<X11Connection>(desktop.displayName())), monitors(displays) {
        for (const MonitorSetup& monitor : monitors)
            segments.push_back(
                SharedSegment::create(connection, 4 * static_cast<std::size_t>(monitor.rect.width()) *
                                                      static_cast<std::size_t>(monitor.rect.height())));
        read();
    }

    void read() const {
        std::vector<xcb_shm_get_image_cookie_t> cookies;
        for (std::size_t index = 0; index < monitors.size(); ++index) {
            const QRect& rect = monitors[index].rect;
            cookies.push_back(xcb_shm_get_image(
                connection->get(), connection->root(), static_cast<std::int16_t>(rect.x()),
                static_cast<std::int16_t>(rect.y()), static_cast<std::uint16_t>(rect.width()),
                static_cast<std::uint16_t>(rect.height()), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP,
                segments[index]->id(), 0));
        }
        for (const auto cookie : cookies)
            xcbReply<xcb_shm_get_image_reply>(connection->get(), cookie);
    }

private:
    std::shared_ptr<X11Connection> connection;
    std::vector<MonitorSetup> monitors;
    std::vector<std::unique_ptr<SharedSegment>> segments;
};

void pixelsInMemory(benchmark::State& state, const DisplayConfiguration& configuration, int divisor) {
    DesktopSession desktop(
        {.screenSize = configuration.screenSize, .monitors = configuration.monitors, .scaleFactors = {}});
    desktop.client().setRootPicture(detailedPicture(configuration.screenSize));
    X11ScreenCapturer capturer(desktop.displayName());
    std::vector<std::pair<std::shared_ptr<DisplayFilter>, PixelSize>> filters;
    for (const MonitorSetup& monitor : configuration.monitors)
        filters.emplace_back(capturer.prepare(desktop.client().atom(monitor.name.toLatin1())).value(),
                             PixelSize{monitor.rect.width() / divisor, monitor.rect.height() / divisor});
    const PlainReader reference(desktop, configuration.monitors);

    std::vector<double> captures;
    std::vector<double> references;
    for ([[maybe_unused]] const auto step : state) {
        const auto referenceStart = std::chrono::steady_clock::now();
        reference.read();
        references.push_back(elapsedSeconds(referenceStart));

        const auto start = std::chrono::steady_clock::now();
        std::vector<QFuture<Result<CapturedImage>>> results;
        results.reserve(filters.size());
        for (const auto& [filter, size] : filters)
            results.push_back(
                QtConcurrent::run([filter = filter, size = size] { return filter->capture(size); }));
        for (auto& result : results)
            result.waitForFinished();
        captures.push_back(elapsedSeconds(start));
        state.SetIterationTime(captures.back());
        for (auto& result : results) {
            const Result<CapturedImage> captured = result.result();
            if (!captured)
                state.SkipWithError(captured.error().description.toUtf8().constData());
        }
    }
    state.counters["reference_ms"] = median(references) * 1000;
    state.counters["ratio"] = median(captures) / median(references);
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (const DisplayConfiguration& configuration : displayConfigurations())
        for (const int divisor : {1, 2})
            benchmark::RegisterBenchmark(
                std::string(divisor == 1 ? "native/" : "halved/").append(configuration.name).c_str(),
                [configuration, divisor](benchmark::State& state) {
                    pixelsInMemory(state, configuration, divisor);
                })
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond)
                ->Iterations(60);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

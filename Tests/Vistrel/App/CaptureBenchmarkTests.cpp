#include "App/CaptureBenchmark.h"

#include <gtest/gtest.h>

TEST(CaptureBenchmark, TheWatchdogEndsAHangingRunAndNoOther) {
    std::vector<std::shared_ptr<CaptureTiming>> runs;
    QByteArray output;
    QByteArray errors;
    std::vector<std::function<void()>> watchdogs, pauses;
    int closed = 0;
    std::optional<int> status;
    CaptureBenchmark benchmark(
        3, {{.begin = [&](CaptureTime::Instant,
                          std::shared_ptr<CaptureTiming> run) { runs.push_back(std::move(run)); },
             .close = [&] { ++closed; },
             .prepareOverlays = [] {},
             .beginPreview = {},
             .busy = {}},
            Console{[&](const QByteArray& bytes) { output += bytes; },
                    [&](const QByteArray& bytes) { errors += bytes; }},
            [&](std::chrono::milliseconds time, std::function<void()> callback) {
                (time == CaptureBenchmark::runLimit ? watchdogs : pauses).push_back(std::move(callback));
            },
            [&](int code) { status = code; }});
    benchmark.start();
    CaptureTiming::Report report = *runs.front()->finish(std::nullopt);
    report.totalMS = 20.005;
    benchmark.receive(report);
    EXPECT_EQ(errors, "Capture 1/3: 20.00 ms\n");
    pauses.back()();
    watchdogs.front()();
    EXPECT_EQ(closed, 1) << "the second run goes on";
    EXPECT_FALSE(status);
    watchdogs.back()();
    EXPECT_TRUE(errors.contains("(Timed out waiting for screenshot or overlay drawing after 20 seconds.)"));
    EXPECT_EQ(status, 1);
    const QByteArray written = output + errors;
    benchmark.receive(report);
    EXPECT_EQ(output + errors, written) << "a capture that finishes after all";
}

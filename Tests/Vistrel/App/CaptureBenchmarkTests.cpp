#include "App/CaptureBenchmark.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

namespace {

/// A benchmark on a session that answers when the test says so, with a clock that the test turns.
class CaptureBenchmarkTest : public ::testing::Test {
protected:
    void start(int runs) {
        CaptureSession session;
        session.begin = [this](CaptureTime::Instant, std::shared_ptr<CaptureTiming> run) {
            timing = std::move(run);
            ++begins;
        };
        session.close = [] {};
        session.prepareOverlays = [] {};
        benchmark = std::make_unique<CaptureBenchmark>(
            runs, CaptureBenchmark::Services{
                      std::move(session),
                      Console{[this](const QByteArray& bytes) { output += bytes; },
                              [this](const QByteArray& bytes) { errors += bytes; }},
                      [this](std::chrono::milliseconds time, std::function<void()> callback) {
                          (time == CaptureBenchmark::runLimit ? watchdogs : pauses).push_back(callback);
                      },
                      [this](int code) { status = code; }});
        benchmark->start();
    }
    void report(double totalMS) {
        CaptureTiming::Report report = *timing->finish(std::nullopt);
        report.totalMS = totalMS;
        benchmark->receive(report);
    }
    qsizetype reports() const { return QJsonDocument::fromJson(output).array().size(); }

    std::shared_ptr<CaptureTiming> timing;
    int begins = 0;
    QByteArray output;
    QByteArray errors;
    std::vector<std::function<void()>> watchdogs, pauses;
    std::optional<int> status;
    std::unique_ptr<CaptureBenchmark> benchmark;
};

TEST_F(CaptureBenchmarkTest, runsFollowEachOtherAfterAPause) {
    start(3);
    report(10);
    EXPECT_EQ(begins, 1);
    pauses.back()();
    watchdogs.front()(); // of the run that has ended
    report(20.005);
    pauses.back()();
    EXPECT_EQ(begins, 3);
    EXPECT_FALSE(status);
    report(30);
    EXPECT_EQ(errors, "Capture 1/3: 10.00 ms\nCapture 2/3: 20.00 ms\nCapture 3/3: 30.00 ms\n");
    EXPECT_EQ(reports(), 3);
    EXPECT_TRUE(output.endsWith("]\n\n")) << "one empty line follows the array";
    EXPECT_EQ(status, 0);
}

TEST_F(CaptureBenchmarkTest, theWatchdogReportsAHangingRun) {
    start(2);
    watchdogs.back()();
    EXPECT_TRUE(errors.contains("(Timed out waiting for screenshot or overlay drawing after 20 seconds.)"));
    EXPECT_EQ(status, 1);
    // The capture finishes after all: nothing more is written.
    benchmark->receive(CaptureTiming::Report{});
    EXPECT_EQ(reports(), 1);
    EXPECT_EQ(errors.count('\n'), 1);
}

} // namespace

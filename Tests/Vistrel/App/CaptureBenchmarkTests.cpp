#include "App/CaptureBenchmark.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

/// A benchmark on a session that answers when the test says so, with a clock that the test turns.
struct CaptureBenchmarkTest : ::testing::Test {
    struct Delayed {
        std::chrono::milliseconds time;
        std::function<void()> callback;
    };
    std::shared_ptr<CaptureTiming> timing;
    int begins = 0;
    int closes = 0;
    int prepares = 0;
    QByteArray output;
    QByteArray errors;
    std::vector<Delayed> delayed;
    std::optional<int> status;
    std::unique_ptr<CaptureBenchmark> benchmark;

    void start(int runs) {
        CaptureSession session;
        session.begin = [this](CaptureTime::Instant start, std::shared_ptr<CaptureTiming> run) {
            EXPECT_EQ(start, run->start());
            timing = std::move(run);
            ++begins;
        };
        session.close = [this] { ++closes; };
        session.prepareOverlays = [this] { ++prepares; };
        benchmark = std::make_unique<CaptureBenchmark>(
            runs, CaptureBenchmark::Services{
                      std::move(session),
                      Console{[this](const QByteArray& bytes) { output += bytes; },
                              [this](const QByteArray& bytes) { errors += bytes; }},
                      [this](std::chrono::milliseconds time, std::function<void()> callback) {
                          delayed.push_back({time, std::move(callback)});
                      },
                      [this](int code) { status = code; }});
        benchmark->start();
    }

    void report(double totalMS, std::optional<QString> error = std::nullopt) {
        CaptureTiming::Report report = *timing->finish(error);
        report.totalMS = totalMS;
        benchmark->receive(report);
    }

    void fire(std::chrono::milliseconds time) {
        for (std::size_t index = 0; index < delayed.size(); ++index) {
            if (delayed[index].time != time)
                continue;
            const auto callback = delayed[index].callback;
            delayed.erase(delayed.begin() + static_cast<std::ptrdiff_t>(index));
            return callback();
        }
        FAIL() << "nothing is due after " << time.count() << " ms";
    }

    QJsonArray reports() const { return QJsonDocument::fromJson(output).array(); }
};

TEST_F(CaptureBenchmarkTest, oneRunEndsAfterTheFirstReport) {
    start(1);
    EXPECT_EQ(prepares, 1);
    EXPECT_EQ(timing->source(), QLatin1StringView("terminal_benchmark"));
    report(183.414);
    EXPECT_EQ(errors, "Capture 1/1: 183.41 ms\n");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(closes, 1);
    ASSERT_EQ(reports().size(), 1);
    EXPECT_EQ(reports()[0].toObject()[QStringLiteral("totalMS")].toDouble(), 183.414);
    EXPECT_TRUE(output.endsWith("]\n\n")) << "one empty line follows the array";
}

TEST_F(CaptureBenchmarkTest, runsFollowEachOtherAfterAPause) {
    start(3);
    report(10);
    EXPECT_EQ(begins, 1);
    fire(CaptureBenchmark::pauseBetweenRuns);
    report(20.005);
    fire(CaptureBenchmark::pauseBetweenRuns);
    EXPECT_EQ(begins, 3);
    EXPECT_FALSE(status);
    report(30);
    EXPECT_EQ(errors, "Capture 1/3: 10.00 ms\nCapture 2/3: 20.00 ms\nCapture 3/3: 30.00 ms\n");
    EXPECT_EQ(reports().size(), 3);
    EXPECT_EQ(status, 0);
}

TEST_F(CaptureBenchmarkTest, theFirstFailureEndsTheSeries) {
    start(5);
    report(10);
    fire(CaptureBenchmark::pauseBetweenRuns);
    report(12.5, QStringLiteral("No display."));
    EXPECT_TRUE(errors.endsWith("Capture 2/5: 12.50 ms (No display.)\n"));
    EXPECT_EQ(reports().size(), 2);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(begins, 2);
}

TEST_F(CaptureBenchmarkTest, theWatchdogReportsAHangingRun) {
    start(2);
    const std::shared_ptr<CaptureTiming> hanging = timing;
    fire(CaptureBenchmark::runLimit);
    EXPECT_TRUE(errors.contains("(Timed out waiting for screenshot or overlay drawing after 20 seconds.)"));
    EXPECT_EQ(status, 1);
    EXPECT_EQ(reports().size(), 1);
    EXPECT_FALSE(hanging->finish(std::nullopt));

    // The capture finishes after all: nothing more is written.
    const QByteArray before = output;
    benchmark->receive(CaptureTiming::Report{});
    EXPECT_EQ(output, before);
    EXPECT_EQ(errors.count('\n'), 1);
}

TEST_F(CaptureBenchmarkTest, theWatchdogOfAnEndedRunDoesNothing) {
    start(2);
    report(10);
    fire(CaptureBenchmark::pauseBetweenRuns);
    fire(CaptureBenchmark::runLimit);
    EXPECT_FALSE(status);
    EXPECT_EQ(errors.count('\n'), 1);
}

} // namespace

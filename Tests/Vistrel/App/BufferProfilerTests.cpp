#include "App/BufferProfiler.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

QStringList linesOf(const BufferProfiler::Request& request) {
    QByteArray printed;
    const Console console = {.output = [&](const QByteArray& bytes) { printed += bytes; }, .error = {}};
    EXPECT_TRUE(BufferProfiler::run(request, console));
    EXPECT_TRUE(printed.endsWith('\n'));
    return QString::fromUtf8(printed).chopped(1).split(u'\n');
}

} // namespace

TEST(BufferProfiler, saysWhenAHistoryDoesNotFit) {
    EXPECT_EQ(linesOf({5120, 2880, 2, 60}),
              QStringList{QStringLiteral("5120×2880, 2 displays: on-demand capture (memory budget)")});
    EXPECT_EQ(linesOf({100, 0, -1, 0}),
              QStringList{QStringLiteral("100×0, -1 displays: on-demand capture (memory budget)")});
}

TEST(BufferProfiler, printsWhatAHistoryCosts) {
    const QStringList lines = linesOf({640, 480, 2, 30});
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], QStringLiteral("640×480, 2 displays, max 30 fps: effective 30 fps, 7 history slots"));
    const QRegularExpression footprint(QStringLiteral(
        R"(^Physical footprint MiB: baseline \d+\.\d, buffers \d+\.\d, conversion \d+\.\d, released \d+\.\d$)"));
    EXPECT_TRUE(footprint.match(lines[1]).hasMatch()) << qPrintable(lines[1]);
    // 2 × 11 frames of 460,800 bytes are 9.67 MiB.
    const QRegularExpression workload(
        QStringLiteral(R"(^History copy workload: \d+\.\d{3} s; stream \+ history estimate 9 MiB$)"));
    EXPECT_TRUE(workload.match(lines[2]).hasMatch()) << qPrintable(lines[2]);
    EXPECT_EQ(lines[3],
              QStringLiteral("Historical synthetic buffer measurement; normal Vistrel captures on demand "
                             "with no background stream."));
}

TEST(BufferProfiler, footprintShowsTheKeptFrames) {
    const QStringList figures = linesOf({3840, 2160, 1, 60})[1].split(u' ');
    const double baseline = figures[4].chopped(1).toDouble();
    const double buffers = figures[6].chopped(1).toDouble();
    const double released = figures.last().toDouble();
    // 13 kept frames and the synthetic one, 11.87 MiB each. Libraries are shared with programs that come and
    // go meanwhile, which moves the figures by less than a frame or two.
    constexpr double frame = 11.87;
    EXPECT_GT(buffers - baseline, 12 * frame);
    EXPECT_LT(released, buffers - 11 * frame);
}

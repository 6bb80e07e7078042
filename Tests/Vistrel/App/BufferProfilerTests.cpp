#include "App/BufferProfiler.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(BufferProfiler, printsWhatAHistoryCosts) {
    QByteArray printed;
    const Console console = {.output = [&](const QByteArray& bytes) { printed += bytes; }, .error = {}};
    EXPECT_TRUE(BufferProfiler::run({5120, 2880, 2, 60}, console));
    EXPECT_TRUE(BufferProfiler::run({640, 480, 2, 30}, console));
    // 2 × 11 frames of 460,800 bytes are 9.67 MiB.
    const QRegularExpression expected(uR"(^5120×2880, 2 displays: on-demand capture \(memory budget\)
640×480, 2 displays, max 30 fps: effective 30 fps, 7 history slots
Physical footprint MiB: baseline \d+\.\d, buffers \d+\.\d, conversion \d+\.\d, released \d+\.\d
History copy workload: \d+\.\d{3} s; stream \+ history estimate 9 MiB
Historical synthetic buffer measurement; normal Vistrel captures on demand with no background stream.
$)"_s);
    EXPECT_TRUE(expected.match(QString::fromUtf8(printed)).hasMatch()) << printed.constData();
}

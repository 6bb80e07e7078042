#include "VistrelPlatform/X11/AreaScaler.h"
#include "VistrelPlatform/X11/X11TestPictures.h"

#include <gtest/gtest.h>

namespace {

/// How much of source pixel `pixel` lies under target pixel `index`, as a share of that target pixel.
double share(int index, int target, int pixel, int source) {
    const double scale = static_cast<double>(source) / target;
    const double covered = std::min((index + 1) * scale, pixel + 1.0) - std::max(index * scale, pixel * 1.0);
    return std::max(0.0, covered) / scale;
}

double meanGreen(const QImage& source, PixelSize target, int x, int y) {
    double sum = 0;
    for (int row = 0; row < source.height(); ++row)
        for (int column = 0; column < source.width(); ++column)
            sum += share(x, target.width, column, source.width()) *
                   share(y, target.height, row, source.height()) * qGreen(source.pixel(column, row));
    return sum;
}

} // namespace

TEST(AreaScaler, PixelsAreMeansOfTheAreaTheyCover) {
    const std::tuple<const char*, QSize, PixelSize> rows[] = {
        {"half", {64, 40}, {32, 20}},        {"halfOfOddSize", {65, 41}, {33, 21}},
        {"twoThirds", {60, 33}, {40, 22}},   {"quarter", {64, 64}, {16, 16}},
        {"unequalAxes", {50, 30}, {13, 29}}, {"onePixel", {17, 9}, {1, 1}},
        {"larger", {10, 10}, {15, 12}}};
    for (const auto& [name, size, target] : rows) {
        SCOPED_TRACE(name);
        const QImage source = noise(size);
        const QImage scaled = AreaScaler::scaled(source, target);
        ASSERT_EQ(scaled.size(), QSize(target.width, target.height));
        for (int y = 0; y < target.height; y += 3)
            for (int x = 0; x < target.width; x += 3)
                EXPECT_NEAR(qGreen(scaled.pixel(x, y)), meanGreen(source, target, x, y), 0.501)
                    << x << ' ' << y;
        // Flat colours stay exact.
        QImage flat(size, QImage::Format_RGB32);
        flat.fill(0xFF7F01FFU);
        QImage expected(scaled.size(), QImage::Format_RGB32);
        expected.fill(0xFF7F01FFU);
        EXPECT_EQ(AreaScaler::scaled(flat, target), expected);
    }
}

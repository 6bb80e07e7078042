#include "Vistrel/Annotations/TestPictures.h"

#include <cmath>
#include <functional>
#include <vector>

namespace {

/// One colour channel, row by row.
using Plane = std::vector<double>;

QImage eachChannel(const QImage& image, const std::function<void(Plane&)>& change) {
    QImage result(image.size(), QImage::Format_RGB32);
    result.fill(Qt::black);
    Plane plane(std::size_t(image.width()) * std::size_t(image.height()));
    for (const int shift : {0, 8, 16}) {
        auto level = plane.begin();
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                *level++ = image.pixel(x, y) >> shift & 255;
        change(plane);
        level = plane.begin();
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                result.setPixel(x, y, result.pixel(x, y) | QRgb(std::lround(*level++)) << shift);
    }
    return result;
}

/// Every row blurred and stood up as a column, so that doing it twice blurs both ways.
Plane blurredAndTurned(const Plane& plane, int width, const Plane& weights) {
    const int height = int(plane.size()) / width;
    Plane turned(plane.size());
    for (int y = 0; y < height; ++y) {
        const double* row = plane.data() + y * width;
        for (int x = 0; x < width; ++x) {
            double sum = row[x] * weights[0];
            for (int i = 1; i < int(weights.size()); ++i)
                sum += (row[std::max(x - i, 0)] + row[std::min(x + i, width - 1)]) * weights[std::size_t(i)];
            turned[std::size_t(x) * std::size_t(height) + std::size_t(y)] = sum;
        }
    }
    return turned;
}

} // namespace

QImage TestPictures::exactBlur(const QImage& image, double sigma) {
    Plane weights;
    double sum = -1;
    for (int i = 0; i <= 5 * sigma; ++i)
        sum += 2 * weights.emplace_back(std::exp(-i * i / (2 * sigma * sigma)));
    for (double& weight : weights)
        weight /= sum;
    return eachChannel(image, [&](Plane& plane) {
        const Plane columns = blurredAndTurned(plane, image.width(), weights);
        plane = blurredAndTurned(columns, image.height(), weights);
    });
}

QImage TestPictures::exactBlocks(const QImage& image, EffectFilters::Blocks blocks) {
    return eachChannel(image, [&](Plane& plane) {
        for (int top = 0; top < image.height(); top = blocks.top(blocks.rowAt(top) + 1))
            for (int left = 0; left < image.width(); left = blocks.left(blocks.columnAt(left) + 1)) {
                const QRect block = blocks.whole({left, top, 1, 1}) & image.rect();
                double* const first = plane.data() + top * image.width() + left;
                double sum = 0;
                for (int y = 0; y < block.height(); ++y)
                    for (int x = 0; x < block.width(); ++x)
                        sum += first[y * image.width() + x];
                for (int y = 0; y < block.height(); ++y)
                    std::fill_n(first + y * image.width(), block.width(),
                                sum / (double(block.width()) * block.height()));
            }
    });
}

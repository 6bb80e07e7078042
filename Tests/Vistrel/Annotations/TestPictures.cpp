#include "Vistrel/Annotations/TestPictures.h"

#include <cmath>
#include <vector>

namespace {

constexpr int channels = 3;

/// One channel after the other, row by row.
struct Planes {
    explicit Planes(QSize imageSize)
        : size(imageSize), values(static_cast<std::size_t>(size.width() * size.height() * channels)) {}

    double* row(int channel, int y) {
        return values.data() + (channel * size.height() + std::clamp(y, 0, size.height() - 1)) * size.width();
    }

    QSize size;
    std::vector<double> values;
};

Planes planesOf(const QImage& image) {
    Planes planes(image.size());
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb rgb = image.pixel(x, y);
            planes.row(0, y)[x] = qRed(rgb);
            planes.row(1, y)[x] = qGreen(rgb);
            planes.row(2, y)[x] = qBlue(rgb);
        }
    return planes;
}

QImage rounded(Planes& planes) {
    QImage image(planes.size, QImage::Format_RGB32);
    const auto level = [&](int channel, int x, int y) { return int(std::lround(planes.row(channel, y)[x])); };
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(level(0, x, y), level(1, x, y), level(2, x, y)));
    return image;
}

void blurRow(const double* from, double* to, int width, const std::vector<double>& weights) {
    const int radius = static_cast<int>(weights.size()) - 1;
    for (int x = 0; x < width; ++x) {
        double sum = from[x] * weights[0];
        for (int i = 1; i <= radius; ++i)
            sum += (from[std::max(x - i, 0)] + from[std::min(x + i, width - 1)]) * weights[std::size_t(i)];
        to[x] = sum;
    }
}

} // namespace

QImage TestPictures::exactBlur(const QImage& image, double sigma) {
    std::vector<double> weights;
    double sum = -1;
    for (int i = 0; i <= 5 * sigma; ++i)
        sum += 2 * weights.emplace_back(std::exp(-i * i / (2 * sigma * sigma)));
    for (double& weight : weights)
        weight /= sum;
    Planes source = planesOf(image);
    Planes alongRows(image.size());
    Planes result(image.size());
    const auto width = static_cast<std::size_t>(image.width());
    for (int channel = 0; channel < channels; ++channel) {
        for (int y = 0; y < image.height(); ++y)
            blurRow(source.row(channel, y), alongRows.row(channel, y), image.width(), weights);
        for (int y = 0; y < image.height(); ++y) {
            double* to = result.row(channel, y);
            for (int i = 0; i < static_cast<int>(weights.size()); ++i) {
                const double* above = alongRows.row(channel, y - i);
                const double* below = alongRows.row(channel, y + i);
                const double weight = i > 0 ? weights[std::size_t(i)] : weights[0] / 2;
                for (std::size_t x = 0; x < width; ++x)
                    to[x] += (above[x] + below[x]) * weight;
            }
        }
    }
    return rounded(result);
}

QImage TestPictures::exactBlocks(const QImage& image, EffectFilters::Blocks blocks) {
    Planes planes = planesOf(image);
    for (int top = 0; top < image.height(); top = blocks.start(blocks.indexAt(top) + 1))
        for (int left = 0; left < image.width(); left = blocks.start(blocks.indexAt(left) + 1)) {
            const QRect block = blocks.whole({left, top, 1, 1}) & image.rect();
            for (int channel = 0; channel < channels; ++channel) {
                double sum = 0;
                for (int y = top; y <= block.bottom(); ++y)
                    for (int x = left; x <= block.right(); ++x)
                        sum += planes.row(channel, y)[x];
                for (int y = top; y <= block.bottom(); ++y)
                    std::fill_n(planes.row(channel, y) + left, block.width(),
                                sum / (double(block.width()) * block.height()));
            }
        }
    return rounded(planes);
}

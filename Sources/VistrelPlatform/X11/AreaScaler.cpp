#include "VistrelPlatform/X11/AreaScaler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

constexpr std::uint32_t opaque = 0xFF000000;
constexpr std::uint32_t redAndBlue = 0x00FF00FF;
constexpr std::uint32_t greenOnly = 0x0000FF00;

const std::uint32_t* pixels(const QImage& image, int row) {
    return reinterpret_cast<const std::uint32_t*>(image.constScanLine(row));
}

/// Red and blue are summed side by side in one word: four times 255 stays below the 16 bits apart.
void halveRow(const std::uint32_t* upper, const std::uint32_t* lower, std::uint32_t* target, int width) {
    for (int x = 0; x < width; ++x) {
        const std::uint32_t a = upper[2 * x];
        const std::uint32_t b = upper[2 * x + 1];
        const std::uint32_t c = lower[2 * x];
        const std::uint32_t d = lower[2 * x + 1];
        const std::uint32_t outer =
            (a & redAndBlue) + (b & redAndBlue) + (c & redAndBlue) + (d & redAndBlue) + 0x00020002;
        const std::uint32_t green =
            (a & greenOnly) + (b & greenOnly) + (c & greenOnly) + (d & greenOnly) + 0x00000200;
        target[x] = opaque | (outer >> 2 & redAndBlue) | (green >> 2 & greenOnly);
    }
}

/// The source pixels under one target pixel along one axis, with the share of each.
struct Span {
    int first = 0;
    std::vector<float> weights;
};

std::vector<Span> spans(int sourceLength, int targetLength) {
    std::vector<Span> result(static_cast<std::size_t>(targetLength));
    for (int index = 0; index < targetLength; ++index) {
        // Exact edges in units of 1 / targetLength source pixels.
        const std::int64_t begin = static_cast<std::int64_t>(index) * sourceLength;
        const std::int64_t end = begin + sourceLength;
        Span& span = result[static_cast<std::size_t>(index)];
        span.first = static_cast<int>(begin / targetLength);
        for (std::int64_t pixel = span.first; pixel * targetLength < end; ++pixel) {
            const std::int64_t covered =
                std::min(end, (pixel + 1) * targetLength) - std::max(begin, pixel * targetLength);
            span.weights.push_back(static_cast<float>(covered) / static_cast<float>(sourceLength));
        }
    }
    return result;
}

using Channels = std::array<float, 3>;

std::uint32_t rounded(const Channels& mean) {
    std::uint32_t pixel = opaque;
    for (std::size_t channel = 0; channel < mean.size(); ++channel) {
        const float level = std::clamp(mean[channel] + 0.5F, 0.0F, 255.0F);
        pixel |= static_cast<std::uint32_t>(level) << (8 * channel);
    }
    return pixel;
}

void addRow(const std::uint32_t* source, const std::vector<Span>& columns, float share,
            std::vector<Channels>& sums) {
    for (std::size_t x = 0; x < columns.size(); ++x) {
        const Span& span = columns[x];
        for (std::size_t offset = 0; offset < span.weights.size(); ++offset) {
            const std::uint32_t pixel = source[static_cast<std::size_t>(span.first) + offset];
            const float weight = span.weights[offset] * share;
            sums[x][0] += weight * static_cast<float>(pixel & 0xFF);
            sums[x][1] += weight * static_cast<float>(pixel >> 8 & 0xFF);
            sums[x][2] += weight * static_cast<float>(pixel >> 16 & 0xFF);
        }
    }
}

void scaleByArea(const QImage& source, QImage& target) {
    const std::vector<Span> columns = spans(source.width(), target.width());
    const std::vector<Span> rows = spans(source.height(), target.height());
    std::vector<Channels> sums(columns.size());
    for (int y = 0; y < target.height(); ++y) {
        std::ranges::fill(sums, Channels{});
        const Span& span = rows[static_cast<std::size_t>(y)];
        for (std::size_t offset = 0; offset < span.weights.size(); ++offset)
            addRow(pixels(source, span.first + static_cast<int>(offset)), columns, span.weights[offset],
                   sums);
        std::ranges::transform(sums, reinterpret_cast<std::uint32_t*>(target.scanLine(y)), rounded);
    }
}

} // namespace

QImage AreaScaler::scaled(const QImage& source, PixelSize size) {
    QImage target(size.width, size.height, QImage::Format_RGB32);
    if (target.isNull() || source.isNull())
        return {};
    if (source.width() != 2 * size.width || source.height() != 2 * size.height) {
        scaleByArea(source, target);
        return target;
    }
    for (int y = 0; y < size.height; ++y)
        halveRow(pixels(source, 2 * y), pixels(source, 2 * y + 1),
                 reinterpret_cast<std::uint32_t*>(target.scanLine(y)), size.width);
    return target;
}

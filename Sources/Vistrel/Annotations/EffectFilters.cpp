#include "Annotations/EffectFilters.h"

#include "Annotations/GaussianBlur.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <vector>

namespace {

const uchar* row(const EffectFilters::Source& source, int y) {
    return source.pixels.constScanLine(y - source.origin.y());
}

GaussianBlur::Picture pictureOf(const EffectFilters::Source& source) {
    return {.firstRow = source.pixels.constBits(),
            .bytesPerRow = source.pixels.bytesPerLine(),
            .left = source.origin.x(),
            .top = source.origin.y(),
            .width = source.pictureSize.width(),
            .height = source.pictureSize.height()};
}

/// Rows `from` to `to` of `area`, written to the same rows of `target`.
void blurRows(const EffectFilters::Source& source, const QRect& area, int from, int to, uchar* target,
              qsizetype bytesPerRow) {
    const GaussianBlur blur(pictureOf(source));
    // Wide enough that the overlap costs little, narrow enough that the rows in work stay in the cache.
    constexpr int stripWidth = 768;
    for (int x = 0; x < area.width(); x += stripWidth)
        blur.apply({.x = area.x() + x,
                    .y = area.y() + from,
                    .width = std::min(stripWidth, area.width() - x),
                    .height = to - from},
                   target + from * bytesPerRow + qsizetype{4} * x, bytesPerRow);
}

/// Sums of every column of the rows `from` to `to`, channel by channel.
void sumRows(const EffectFilters::Source& source, const QRect& area, int from, int to,
             std::vector<std::uint32_t>& sums) {
    std::fill(sums.begin(), sums.end(), 0U);
    const std::size_t count = sums.size();
    for (int y = from; y < to; ++y) {
        const uchar* bytes = row(source, y) + qsizetype{4} * (area.left() - source.origin.x());
        for (std::size_t i = 0; i < count; ++i)
            sums[i] += bytes[i];
    }
}

QRgb meanColor(const std::uint32_t* sums, int columns, int rows) {
    std::uint64_t total[3] = {};
    for (int x = 0; x < columns; ++x)
        for (int channel = 0; channel < 3; ++channel)
            total[channel] += sums[4 * x + channel];
    const auto count = static_cast<std::uint64_t>(columns) * static_cast<std::uint64_t>(rows);
    const auto mean = [count](std::uint64_t sum) {
        return static_cast<int>((2 * sum + count) / (2 * count));
    };
    // The bytes of a 32-bit pixel stand in the order blue, green, red.
    static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN);
    return qRgb(mean(total[2]), mean(total[1]), mean(total[0]));
}

} // namespace

QImage EffectFilters::blurOnOneThread(const Source& source, const QRect& area) {
    QImage result(area.size(), QImage::Format_RGB32);
    blurRows(source, area, 0, area.height(), result.bits(), result.bytesPerLine());
    return result;
}

QImage EffectFilters::blur(const Source& source, const QRect& area) {
    constexpr qint64 worthAThread = 256 * 256;
    if (qint64{area.width()} * area.height() < 2 * worthAThread || std::thread::hardware_concurrency() < 2)
        return blurOnOneThread(source, area);
    QImage result(area.size(), QImage::Format_RGB32);
    uchar* bytes = result.bits();
    const qsizetype bytesPerRow = result.bytesPerLine();
    const int half = area.height() / 2;
    const std::jthread other([&] { blurRows(source, area, 0, half, bytes, bytesPerRow); });
    blurRows(source, area, half, area.height(), bytes, bytesPerRow);
    return result;
}

EffectFilters::Blocks EffectFilters::Blocks::ofEdge(double pixels, int pictureHeight) {
    constexpr double rounding = 1e-6;
    if (!(pixels > 1))
        return {1, pictureHeight};
    const double whole = std::round(pixels);
    return {std::abs(pixels - whole) < rounding ? whole : pixels, pictureHeight};
}

int EffectFilters::Blocks::left(int column) const {
    return static_cast<int>(std::lround(column * edge));
}

int EffectFilters::Blocks::columnAt(int x) const {
    int column = static_cast<int>(std::floor(x / edge));
    while (left(column) > x)
        --column;
    while (left(column + 1) <= x)
        ++column;
    return column;
}

int EffectFilters::Blocks::rows() const {
    return static_cast<int>(std::ceil(pictureHeight / edge));
}

// Rows are columns seen from the bottom edge.
int EffectFilters::Blocks::top(int row) const {
    return pictureHeight - left(rows() - row);
}

int EffectFilters::Blocks::rowAt(int y) const {
    return rows() - 1 - columnAt(pictureHeight - 1 - y);
}

QRect EffectFilters::Blocks::whole(const QRect& area) const {
    const QPoint first(left(columnAt(area.left())), top(rowAt(area.top())));
    const QPoint end(left(columnAt(area.right()) + 1), top(rowAt(area.bottom()) + 1));
    return {first, end - QPoint(1, 1)};
}

QImage EffectFilters::pixelate(const Source& source, const QRect& area, Blocks blocks) {
    QImage result(area.size(), QImage::Format_RGB32);
    std::vector<std::uint32_t> sums(static_cast<std::size_t>(area.width()) * 4);
    const int right = area.left() + area.width();
    const int bottom = area.top() + area.height();
    for (int top = area.top(); top < bottom;) {
        const int nextTop = std::min(blocks.top(blocks.rowAt(top) + 1), bottom);
        sumRows(source, area, top, nextTop, sums);
        auto* line = reinterpret_cast<QRgb*>(result.scanLine(top - area.top()));
        for (int left = area.left(); left < right;) {
            const int next = std::min(blocks.left(blocks.columnAt(left) + 1), right);
            const auto offset = left - area.left();
            std::fill_n(line + offset, next - left,
                        meanColor(sums.data() + std::ptrdiff_t{4} * offset, next - left, nextTop - top));
            left = next;
        }
        for (int y = top + 1; y < nextTop; ++y)
            std::copy_n(line, area.width(), reinterpret_cast<QRgb*>(result.scanLine(y - area.top())));
        top = nextTop;
    }
    return result;
}

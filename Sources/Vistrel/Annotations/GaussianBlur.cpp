#include "Annotations/GaussianBlur.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

// Everything that a variant for a wider instruction set calls has to be compiled for that set too.
#define BLUR_INLINE inline __attribute__((always_inline))

namespace {

constexpr int keptEvery = 4;
constexpr int channels = 4;
constexpr int smoothRadius = 12; // pixels
constexpr int keptRadius = 11;   // kept samples
constexpr int gapRadius = 3;     // kept samples on either side of a pixel

constexpr double totalVariance = 144;
constexpr double smoothVariance = 9;
constexpr double gapVariance = 9;
constexpr double keptVariance = (totalVariance - smoothVariance - gapVariance) / (keptEvery * keptEvery);

template<std::size_t count>
using Weights = std::array<float, count>;

/// Gauss at `first`, `first` + `stride`…, scaled so that the weights add up to 1; nothing beyond `limit`.
template<std::size_t count>
Weights<count> gauss(double variance, double first, double stride, double limit) {
    std::array<double, count> exact{};
    double sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double at = first + stride * static_cast<double>(i);
        exact[i] = std::abs(at) > limit ? 0 : std::exp(-at * at / (2 * variance));
        sum += exact[i];
    }
    Weights<count> weights{};
    for (std::size_t i = 0; i < count; ++i)
        weights[i] = static_cast<float>(exact[i] / sum);
    return weights;
}

constexpr std::size_t smoothTaps = 2 * smoothRadius + 1;
constexpr std::size_t keptTaps = 2 * keptRadius + 1;
constexpr std::size_t gapTaps = 2 * gapRadius + 1;

struct Kernels {
    Weights<smoothTaps> smooth = gauss<smoothTaps>(smoothVariance, -smoothRadius, 1, smoothRadius);
    Weights<keptTaps> kept = gauss<keptTaps>(keptVariance, -keptRadius, 1, keptRadius);
    /// One kernel for each place between two kept samples.
    std::array<Weights<gapTaps>, keptEvery> gap = {gapAt(0), gapAt(1), gapAt(2), gapAt(3)};

    static Weights<gapTaps> gapAt(int phase) {
        return gauss<gapTaps>(gapVariance, -keptEvery * gapRadius - phase, keptEvery, keptEvery * gapRadius);
    }
};

int floorDiv(int a, int b) {
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

/// From `first` up to, not including, `end`.
struct Range {
    int first = 0;
    int end = 0;
    int count() const { return end - first; }
    Range grownBy(int amount) const { return {first - amount, end + amount}; }
};

/// Kept samples that the pixels of a range need.
Range keptFor(Range pixels) {
    return {floorDiv(pixels.first, keptEvery) - gapRadius,
            floorDiv(pixels.end - 1, keptEvery) + gapRadius + 1};
}

/// Pixels that are read for a range of kept samples.
Range pixelsFor(Range kept) {
    return {keptEvery * kept.first - smoothRadius, keptEvery * (kept.end - 1) + smoothRadius + 1};
}

/// Eight floats, two pixels; without AVX the compiler uses two registers.
using Floats [[gnu::vector_size(32)]] = float;
constexpr int lanes = 8;

/// The sum of `taps` rows, each with its weight; `count` is a multiple of `lanes`. Symmetric weights.
template<int taps>
BLUR_INLINE void addRows(const float* const* rows, const float* weights, float* out, int count) {
    constexpr int middle = taps / 2;
    for (int x = 0; x < count; x += lanes) {
        Floats value;
        std::memcpy(&value, rows[middle] + x, sizeof value);
        Floats sum = value * weights[middle];
        for (int t = 0; t < middle; ++t) {
            Floats a;
            Floats b;
            std::memcpy(&a, rows[t] + x, sizeof a);
            std::memcpy(&b, rows[taps - 1 - t] + x, sizeof b);
            sum += (a + b) * weights[t];
        }
        std::memcpy(out + x, &sum, sizeof sum);
    }
}

/// One pixel: the sum of `taps` neighbouring pixels, each with its weight. Symmetric weights.
using Pixel [[gnu::vector_size(16)]] = float;

template<int taps>
BLUR_INLINE void addColumns(const float* first, const float* weights, float* out) {
    constexpr int middle = taps / 2;
    Pixel value;
    std::memcpy(&value, first + middle * channels, sizeof value);
    Pixel sum = value * weights[middle];
    for (int t = 0; t < middle; ++t) {
        Pixel a;
        Pixel b;
        std::memcpy(&a, first + t * channels, sizeof a);
        std::memcpy(&b, first + (taps - 1 - t) * channels, sizeof b);
        sum += (a + b) * weights[t];
    }
    std::memcpy(out, &sum, sizeof sum);
}

int roundedUp(int count) {
    return (count + lanes - 1) / lanes * lanes;
}

/// Everything one area needs, allocated once.
struct Work {
    Work(const GaussianBlur::Picture& source, const GaussianBlur::Area& area)
        : picture(source),
          columns{area.x, area.x + area.width},
          rows{area.y, area.y + area.height},
          keptColumns(keptFor(columns)),
          keptRows(keptFor(rows)),
          wideColumns(keptColumns.grownBy(keptRadius)),
          wideRows(keptRows.grownBy(keptRadius)),
          readColumns(pixelsFor(wideColumns)) {
        inMemory = {std::max(readColumns.first, 0), std::min(readColumns.end, picture.width)};
        readWidth = roundedUp(inMemory.count() * channels);
        ring.resize(static_cast<std::size_t>(readWidth) * ringRows);
        padded.resize(static_cast<std::size_t>(readColumns.count()) * channels + lanes);
        keptWidth = roundedUp(keptColumns.count() * channels);
        wide.resize(static_cast<std::size_t>(wideColumns.count()) * channels);
        kept.resize(static_cast<std::size_t>(keptWidth) * static_cast<std::size_t>(wideRows.count()));
        finished.resize(static_cast<std::size_t>(keptWidth));
        filledWidth = roundedUp((columns.count() + 2 * keptEvery) * channels);
        filled.resize(static_cast<std::size_t>(filledWidth) * gapRing);
    }

    static constexpr int ringRows = 32;
    static constexpr int gapRing = 8;

    const GaussianBlur::Picture& picture;
    Range columns;
    Range rows;
    Range keptColumns;
    Range keptRows;
    /// Kept samples before the second blur.
    Range wideColumns;
    Range wideRows;
    Range readColumns;
    /// The part of `readColumns` that lies in the picture.
    Range inMemory;

    int readWidth = 0;
    int keptWidth = 0;
    int filledWidth = 0;
    std::vector<float> ring;
    std::vector<float> padded;
    std::vector<float> wide;
    std::vector<float> kept;
    std::vector<float> finished;
    std::vector<float> filled;
};

BLUR_INLINE float* ringRow(Work& work, int y) {
    return work.ring.data() + static_cast<std::ptrdiff_t>(y & (Work::ringRows - 1)) * work.readWidth;
}

BLUR_INLINE void readRow(Work& work, int y) {
    const GaussianBlur::Picture& picture = work.picture;
    const int inside = std::clamp(y, 0, picture.height - 1);
    const std::uint8_t* bytes = picture.firstRow + (inside - picture.top) * picture.bytesPerRow +
                                static_cast<std::ptrdiff_t>(work.inMemory.first - picture.left) * channels;
    float* out = ringRow(work, y);
    const int count = work.inMemory.count() * channels;
    for (int i = 0; i < count; ++i)
        out[i] = bytes[i];
}

/// Repeats the first and the last pixel of the picture as far as the smoothing reads.
BLUR_INLINE void padEnds(Work& work) {
    float* row = work.padded.data();
    const int before = work.inMemory.first - work.readColumns.first;
    const int end = before + work.inMemory.count();
    for (int x = 0; x < before; ++x)
        std::memcpy(row + x * channels, row + before * channels, channels * sizeof(float));
    for (int x = end; x < work.readColumns.count(); ++x)
        std::memcpy(row + x * channels, row + (end - 1) * channels, channels * sizeof(float));
}

/// Smooths, keeps every fourth row and column, and blurs what is kept along its rows.
BLUR_INLINE void keepSamples(Work& work, const Kernels& kernels) {
    const int before = work.inMemory.first - work.readColumns.first;
    int read = keptEvery * work.wideRows.first - smoothRadius;
    for (int r = work.wideRows.first; r < work.wideRows.end; ++r) {
        for (; read <= keptEvery * r + smoothRadius; ++read)
            readRow(work, read);
        const float* rows[smoothTaps];
        for (int t = 0; t < static_cast<int>(smoothTaps); ++t)
            rows[t] = ringRow(work, keptEvery * r - smoothRadius + t);
        addRows<smoothTaps>(rows, kernels.smooth.data(), work.padded.data() + before * channels,
                            work.readWidth);
        padEnds(work);
        for (int c = 0; c < work.wideColumns.count(); ++c)
            addColumns<smoothTaps>(work.padded.data() + c * keptEvery * channels, kernels.smooth.data(),
                                   work.wide.data() + c * channels);
        float* out = work.kept.data() + static_cast<std::ptrdiff_t>(r - work.wideRows.first) * work.keptWidth;
        for (int c = 0; c < work.keptColumns.count(); ++c)
            addColumns<keptTaps>(work.wide.data() + c * channels, kernels.kept.data(), out + c * channels);
    }
}

BLUR_INLINE float* filledRow(Work& work, int r) {
    return work.filled.data() + static_cast<std::ptrdiff_t>(r & (Work::gapRing - 1)) * work.filledWidth;
}

/// Finishes one kept row: blurs it across the rows and fills the gaps between its columns.
BLUR_INLINE void fillColumns(Work& work, const Kernels& kernels, int r) {
    const float* rows[keptTaps];
    for (int t = 0; t < static_cast<int>(keptTaps); ++t)
        rows[t] = work.kept.data() +
                  static_cast<std::ptrdiff_t>(r - keptRadius + t - work.wideRows.first) * work.keptWidth;
    addRows<keptTaps>(rows, kernels.kept.data(), work.finished.data(), work.keptWidth);
    float* out = filledRow(work, r);
    const int firstGroup = floorDiv(work.columns.first, keptEvery);
    const int groups = floorDiv(work.columns.end - 1, keptEvery) - firstGroup + 1;
    for (int g = 0; g < groups; ++g) {
        const float* around = work.finished.data() + g * channels;
        for (int phase = 0; phase < keptEvery; ++phase) {
            const float* weights = kernels.gap[static_cast<std::size_t>(phase)].data();
            Pixel sum = {};
            for (int t = 0; t < static_cast<int>(gapTaps); ++t) {
                Pixel value;
                std::memcpy(&value, around + t * channels, sizeof value);
                sum += value * weights[t];
            }
            std::memcpy(out + (g * keptEvery + phase) * channels, &sum, sizeof sum);
        }
    }
}

BLUR_INLINE void writeRow(Work& work, const Kernels& kernels, int y, std::uint8_t* out) {
    const int group = floorDiv(y, keptEvery);
    const float* weights = kernels.gap[static_cast<std::size_t>(y - group * keptEvery)].data();
    const float* rows[gapTaps];
    const int offset = (work.columns.first - floorDiv(work.columns.first, keptEvery) * keptEvery) * channels;
    for (int t = 0; t < static_cast<int>(gapTaps); ++t)
        rows[t] = filledRow(work, group - gapRadius + t) + offset;
    const int count = work.columns.count() * channels;
    int x = 0;
    for (; x + lanes <= count; x += lanes) {
        Floats sum = {0.5F, 0.5F, 0.5F, 0.5F, 0.5F, 0.5F, 0.5F, 0.5F};
        for (int t = 0; t < static_cast<int>(gapTaps); ++t) {
            Floats value;
            std::memcpy(&value, rows[t] + x, sizeof value);
            sum += value * weights[t];
        }
        for (int lane = 0; lane < lanes; ++lane)
            out[x + lane] = static_cast<std::uint8_t>(static_cast<int>(sum[lane]));
    }
    for (; x < count; ++x) {
        float sum = 0.5F;
        for (int t = 0; t < static_cast<int>(gapTaps); ++t)
            sum += rows[t][x] * weights[t];
        out[x] = static_cast<std::uint8_t>(static_cast<int>(sum));
    }
    for (int i = channels - 1; i < count; i += channels)
        out[i] = 255;
}

BLUR_INLINE void run(Work& work, const Kernels& kernels, std::uint8_t* target, std::ptrdiff_t bytesPerRow) {
    keepSamples(work, kernels);
    int filled = work.keptRows.first;
    for (int y = work.rows.first; y < work.rows.end; ++y) {
        for (; filled <= floorDiv(y, keptEvery) + gapRadius; ++filled)
            fillColumns(work, kernels, filled);
        writeRow(work, kernels, y, target + (y - work.rows.first) * bytesPerRow);
    }
}

#if defined(__x86_64__)
__attribute__((target("avx2,fma"))) void runWide(Work& work, const Kernels& kernels, std::uint8_t* target,
                                                 std::ptrdiff_t bytesPerRow) {
    run(work, kernels, target, bytesPerRow);
}
#endif

void runPlain(Work& work, const Kernels& kernels, std::uint8_t* target, std::ptrdiff_t bytesPerRow) {
    run(work, kernels, target, bytesPerRow);
}

} // namespace

void GaussianBlur::apply(const Area& area, std::uint8_t* target, std::ptrdiff_t targetBytesPerRow) const {
    if (area.width <= 0 || area.height <= 0)
        return;
    static const Kernels kernels;
    Work work(picture, area);
#if defined(__x86_64__)
    static const bool wide = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
    if (wide) {
        runWide(work, kernels, target, targetBytesPerRow);
        return;
    }
#endif
    runPlain(work, kernels, target, targetBytesPerRow);
}

#undef BLUR_INLINE

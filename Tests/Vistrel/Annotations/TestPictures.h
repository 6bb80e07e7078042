#pragma once

#include "Annotations/EffectFilters.h"
#include "Desktop/Fixture/Noise.h"

#include <algorithm>

/// How pictures differ, and effects computed the slow and certain way.
namespace TestPictures {

/// In levels of one colour channel; alpha is left out. Pictures of different sizes differ by 256.
inline int largestDifference(const QImage& a, const QImage& b, const QRect& within) {
    int largest = a.size() == b.size() ? 0 : 256;
    for (int y = within.top(); largest < 256 && y <= within.bottom(); ++y)
        for (int x = within.left(); x <= within.right(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            for (const int shift : {0, 8, 16})
                largest = std::max(largest, std::abs(int(p >> shift & 255) - int(q >> shift & 255)));
        }
    return largest;
}
inline int largestDifference(const QImage& a, const QImage& b) {
    return largestDifference(a, b, a.rect());
}

/// The convolution with a Gaussian in double precision, edge pixels going on for ever.
QImage exactBlur(const QImage& image, double sigma);
/// Every pixel replaced by the rounded mean of its block.
QImage exactBlocks(const QImage& image, EffectFilters::Blocks blocks);

} // namespace TestPictures

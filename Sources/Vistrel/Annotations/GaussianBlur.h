#pragma once

#include <cstddef>
#include <cstdint>

/// A Gaussian blur of standard deviation 12 on 32-bit pixels, in three smaller ones: one that makes the
/// picture smooth enough to keep every fourth row and column, one on what is kept, and one that fills
/// the gaps again. Their variances add up to 144, and what they lose stays far below one level.
/// The kept rows and columns are counted from the picture's corner, so neighbouring areas fit together.
class GaussianBlur {
public:
    /// The whole picture is `width` times `height`; `firstRow` points at its pixel (`left`, `top`).
    struct Picture {
        const std::uint8_t* firstRow = nullptr;
        std::ptrdiff_t bytesPerRow = 0;
        int left = 0;
        int top = 0;
        int width = 0;
        int height = 0;
    };
    struct Area {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };

    explicit GaussianBlur(const Picture& source) : picture(source) {}

    /// Writes the blurred area, opaque. The area grown by `EffectFilters::blurReach` and cut at the
    /// picture must be in memory.
    void apply(const Area& area, std::uint8_t* target, std::ptrdiff_t targetBytesPerRow) const;

private:
    Picture picture;
};

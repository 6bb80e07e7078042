#pragma once

#include <QVariantMap>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

/// A picture in planes of bytes. Mostly 4:2:0 with two planes: brightness, then blue and red difference
/// in turn at half the width and height. Whoever shares one sees to its own locking.
class PixelBuffer {
public:
    static constexpr std::size_t rowAlignment = 64;

    struct Plane {
        std::uint8_t* bytes = nullptr;
        std::size_t bytesPerRow = 0;
        std::int64_t rows = 0;

        std::span<std::uint8_t> row(std::int64_t y) const {
            return {bytes + static_cast<std::size_t>(y) * bytesPerRow, bytesPerRow};
        }
    };

    /// A new 4:2:0 buffer with two planes; null without a size or memory.
    static std::unique_ptr<PixelBuffer> biPlanar(std::int64_t width, std::int64_t height);

    /// Planes over memory that someone else owns.
    PixelBuffer(std::int64_t pixelWidth, std::int64_t pixelHeight, std::vector<Plane> borrowedPlanes);
    ~PixelBuffer();
    PixelBuffer(const PixelBuffer&) = delete;
    PixelBuffer& operator=(const PixelBuffer&) = delete;

    std::int64_t width() const { return pixels[0]; }
    std::int64_t height() const { return pixels[1]; }
    const std::vector<Plane>& planes() const { return planeList; }

    /// What goes with the picture, such as the name of its colour space.
    QVariantMap attachments;

private:
    std::int64_t pixels[2];
    std::vector<Plane> planeList;
    void* mapping = nullptr;
    std::size_t mappedBytes = 0;
};

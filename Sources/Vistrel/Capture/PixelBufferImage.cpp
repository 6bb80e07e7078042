#include "Capture/PixelBufferImage.h"

#include <QColorSpace>

#include <algorithm>

namespace {

/// Fixed-point factors of BT.709 with 16 to 235 for brightness and 16 to 240 for colour.
constexpr int shift = 16;
constexpr int half = 1 << (shift - 1);
constexpr int lumaFactor = 76309;
constexpr int redFromRed = 117489;
constexpr int greenFromBlue = -13975;
constexpr int greenFromRed = -34925;
constexpr int blueFromBlue = 138438;

uchar level(int fixedPoint) {
    return static_cast<uchar>(std::clamp((fixedPoint + half) >> shift, 0, 255));
}

void convertRow(const std::uint8_t* luma, const std::uint8_t* chroma, uchar* rgba, std::int64_t width) {
    for (std::int64_t x = 0; x < width; ++x) {
        const int y = (luma[x] - 16) * lumaFactor;
        const int blue = chroma[x / 2 * 2] - 128;
        const int red = chroma[x / 2 * 2 + 1] - 128;
        rgba[4 * x] = level(y + redFromRed * red);
        rgba[4 * x + 1] = level(y + greenFromBlue * blue + greenFromRed * red);
        rgba[4 * x + 2] = level(y + blueFromBlue * blue);
        rgba[4 * x + 3] = 255;
    }
}

} // namespace

QImage imageFromPixelBuffer(const PixelBuffer& buffer) {
    if (buffer.planes().size() != 2)
        return {};
    QImage image(static_cast<int>(buffer.width()), static_cast<int>(buffer.height()),
                 QImage::Format_RGBA8888);
    if (image.isNull())
        return image;
    for (int y = 0; y < image.height(); ++y)
        convertRow(buffer.planes()[0].row(y).data(), buffer.planes()[1].row(y / 2).data(), image.scanLine(y),
                   buffer.width());
    image.setColorSpace(QColorSpace::SRgb);
    return image;
}

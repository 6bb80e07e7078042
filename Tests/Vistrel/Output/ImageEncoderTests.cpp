#include "Output/ImageEncoder.h"

#include <QtEndian>

#include <gtest/gtest.h>
#include <png.h>

#include <random>

namespace {

QImage noise(int width, int height, QImage::Format format, int seed = 1) {
    std::mt19937 random(static_cast<unsigned>(seed));
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            reinterpret_cast<QRgb*>(image.scanLine(y))[x] = static_cast<QRgb>(random());
    return image.convertToFormat(format);
}

/// As the window system delivers pictures: the unused fourth byte is zero.
QImage capture(int width, int height) {
    QImage image = noise(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            reinterpret_cast<QRgb*>(image.scanLine(y))[x] &= 0x00ffffffU;
    return image;
}

/// Part of a larger picture: rows lie further apart than they are long.
QImage cutOut(int width, int height) {
    static const QImage whole = noise(64, 64, QImage::Format_RGB32, 5);
    return QImage(whole.constScanLine(7) + 4 * 9, width, height, whole.bytesPerLine(), QImage::Format_RGB32);
}

QByteArray tightRGBA(const QImage& image) {
    const QImage straight = image.convertToFormat(QImage::Format_RGBA8888);
    QByteArray bytes;
    for (int y = 0; y < straight.height(); ++y)
        bytes.append(reinterpret_cast<const char*>(straight.constScanLine(y)),
                     qsizetype(4) * straight.width());
    return bytes;
}

QByteArray readWithLibpng(const QByteArray& file) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&png, file.constData(), static_cast<size_t>(file.size())))
        return {};
    png.format = PNG_FORMAT_RGBA;
    QByteArray pixels(static_cast<qsizetype>(PNG_IMAGE_SIZE(png)), '\0');
    if (!png_image_finish_read(&png, nullptr, pixels.data(), 0, nullptr) || png.warning_or_error != 0)
        return {};
    return pixels;
}

constexpr char rgb = 2;
constexpr char rgba = 6;

struct PictureCase {
    const char* name;
    QImage (*make)(int width, int height);
    char colourType;
};

const PictureCase pictureCases[] = {
    {"capture", capture, rgb},
    {"cutOut", cutOut, rgb},
    {"straightAlpha", [](int w, int h) { return noise(w, h, QImage::Format_ARGB32); }, rgba},
    {"premultipliedAlpha", [](int w, int h) { return noise(w, h, QImage::Format_ARGB32_Premultiplied); },
     rgba},
    {"grey", [](int w, int h) { return noise(w, h, QImage::Format_Grayscale8); }, rgb},
};

} // namespace

TEST(PNGEncoder, PicturesAreReadBackByAnotherLibraryPixelByPixel) {
    for (const PictureCase& row : pictureCases) {
        for (int width = 1; width <= 17; ++width) {
            const QImage image = row.make(width, 5);
            const auto file = ImageEncoder::encode(ScreenshotSaveFormat::png, image);
            ASSERT_TRUE(file) << qPrintable(file.error().description);
            EXPECT_EQ(readWithLibpng(*file), tightRGBA(image)) << row.name << " width " << width;
            if (width > 8) {
                EXPECT_EQ(file->at(25), row.colourType) << row.name << " width " << width;
            }
        }
    }
}

TEST(PNGEncoder, LargePicturesAreWholeAcrossTheirBands) {
    QImage even(1500, 1200, QImage::Format_RGB32);
    even.fill(qRgb(250, 250, 250));
    for (const QImage& picture : {capture(1100, 1200), noise(3, 300000, QImage::Format_ARGB32), even}) {
        const auto file = ImageEncoder::encode(ScreenshotSaveFormat::png, picture);
        ASSERT_TRUE(file);
        EXPECT_TRUE(readWithLibpng(*file) == tightRGBA(picture)) << picture.width();
    }
}

TEST(JPEGEncoder, KeepsColoursCloseInFullResolutionAndMakesTransparentWhite) {
    QImage image(64, 48, QImage::Format_ARGB32);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            image.setPixel(x, y, qRgba(4 * x, 5 * y, 2 * (x + y), x < 56 ? 255 : 0));
    const QImage opaque = image.convertToFormat(QImage::Format_RGB32);
    const QImage part(opaque.constScanLine(3) + 20, 33, 40, opaque.bytesPerLine(), QImage::Format_RGB32);
    for (const QImage& row : {image, part, opaque.convertToFormat(QImage::Format_Grayscale8)}) {
        const auto file = ImageEncoder::encode(ScreenshotSaveFormat::jpg, row);
        ASSERT_TRUE(file);
        // The coarsest step of the standard's table is 121, of which 95 percent quality takes a tenth.
        const QByteArray steps = file->mid(file->indexOf(QByteArrayLiteral("\xff\xdb")) + 5, 64);
        EXPECT_EQ(*std::ranges::max_element(steps), 12);
        // The frame header: every component is sampled once per pixel.
        const qsizetype frame = file->indexOf(QByteArrayLiteral("\xff\xc0"));
        ASSERT_GT(frame, 0);
        for (int component = 0; component < file->at(frame + 9); ++component)
            EXPECT_EQ(file->at(frame + 11 + 3 * component), 0x11);
        const QImage read = QImage::fromData(*file, "JPG").convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(read.size(), row.size());
        for (int y = 0; y < read.height(); ++y) {
            for (int x = 0; x < read.width(); ++x) {
                const QRgb given = qAlpha(row.pixel(x, y)) == 0 ? qRgb(255, 255, 255) : row.pixel(x, y);
                EXPECT_NEAR(qRed(read.pixel(x, y)), qRed(given), 6) << x << ' ' << y;
                EXPECT_NEAR(qBlue(read.pixel(x, y)), qBlue(given), 8) << x << ' ' << y;
            }
        }
    }
}

TEST(ImageEncoder, WhatCannotBeEncodedIsAnError) {
    for (const auto format : {ScreenshotSaveFormat::png, ScreenshotSaveFormat::jpg}) {
        const auto file = ImageEncoder::encode(format, QImage());
        ASSERT_FALSE(file);
        EXPECT_EQ(file.error().domain, ImageEncoder::errorDomain);
    }
    // JPEG's sides end at 65,500 pixels.
    const auto tooWide = ImageEncoder::encode(ScreenshotSaveFormat::jpg, capture(70000, 1));
    ASSERT_FALSE(tooWide);
    EXPECT_EQ(tooWide.error().domain, ImageEncoder::errorDomain);
}

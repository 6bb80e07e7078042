#include "Output/ImageEncoder.h"

#include <QColorSpace>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
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

QImage premultipliedOpaque(int width, int height) {
    return noise(width, height, QImage::Format_RGB32).convertToFormat(QImage::Format_ARGB32_Premultiplied);
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

QByteArray runImageMagick(const QStringList& arguments, const QString& program = QStringLiteral("convert")) {
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(60000)) << qPrintable(process.errorString());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    return process.readAllStandardOutput();
}

QString written(const QTemporaryDir& folder, const QString& name, const QByteArray& bytes) {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
}

quint8 colourType(const QByteArray& png) {
    return static_cast<quint8>(png.at(25));
}
constexpr quint8 rgb = 2;
constexpr quint8 rgba = 6;

struct PictureCase {
    const char* name;
    QImage (*make)(int width, int height);
    quint8 colourType;
};

const PictureCase pictureCases[] = {
    {"capture", capture, rgb},
    {"cutOut", cutOut, rgb},
    {"premultipliedOpaque", premultipliedOpaque, rgb},
    {"straightAlpha", [](int w, int h) { return noise(w, h, QImage::Format_ARGB32); }, rgba},
    {"premultipliedAlpha", [](int w, int h) { return noise(w, h, QImage::Format_ARGB32_Premultiplied); },
     rgba},
    {"grey", [](int w, int h) { return noise(w, h, QImage::Format_Grayscale8); }, rgb},
    {"threeBytes", [](int w, int h) { return noise(w, h, QImage::Format_RGB888); }, rgb},
    {"palette", [](int w, int h) { return noise(w, h, QImage::Format_Indexed8); }, rgba},
};

class PNGPictures : public testing::TestWithParam<PictureCase> {};

} // namespace

TEST_P(PNGPictures, ReadBackByAnotherLibraryPixelByPixel) {
    for (int width = 1; width <= 17; ++width) {
        const QImage image = GetParam().make(width, 5);
        const auto file = ImageEncoder::encode(ScreenshotSaveFormat::png, image);
        ASSERT_TRUE(file) << qPrintable(file.error().description);
        EXPECT_EQ(readWithLibpng(*file), tightRGBA(image)) << "width " << width;
        if (width > 8) {
            EXPECT_EQ(colourType(*file), GetParam().colourType) << "width " << width;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, PNGPictures, testing::ValuesIn(pictureCases),
                         [](const auto& row) { return row.param.name; });

TEST(PNGEncoder, AnotherProgramSeesTheSamePixelsAndNoDamage) {
    const QTemporaryDir folder;
    for (const QImage& image : {capture(301, 203), noise(97, 55, QImage::Format_ARGB32)}) {
        const auto file = ImageEncoder::encode(ScreenshotSaveFormat::png, image);
        ASSERT_TRUE(file);
        const QString path = written(folder, QStringLiteral("picture.png"), *file);
        EXPECT_EQ(
            runImageMagick({path, QStringLiteral("-depth"), QStringLiteral("8"), QStringLiteral("rgba:-")}),
            tightRGBA(image));
        const QByteArray colours = runImageMagick(
            {QStringLiteral("-format"), QStringLiteral("%[colorspace]"), path}, QStringLiteral("identify"));
        EXPECT_EQ(colours.trimmed(), "sRGB");
    }
}

TEST(PNGEncoder, LargePicturesAreWholeAcrossTheirBands) {
    for (const QImage& image : {capture(1100, 1200), noise(3, 300000, QImage::Format_ARGB32),
                                QImage(1500, 1200, QImage::Format_RGB32)}) {
        QImage picture = image;
        if (picture.width() == 1500)
            picture.fill(qRgb(250, 250, 250));
        const auto file = ImageEncoder::encode(ScreenshotSaveFormat::png, picture);
        ASSERT_TRUE(file);
        EXPECT_TRUE(readWithLibpng(*file) == tightRGBA(picture)) << picture.width();
    }
}

TEST(PNGEncoder, EveryChunkIsCompleteAndInOrder) {
    const auto file = ImageEncoder::encode(ScreenshotSaveFormat::png, capture(40, 30));
    ASSERT_TRUE(file);
    QByteArrayList types;
    qsizetype at = 8;
    while (at + 12 <= file->size()) {
        types.append(file->mid(at + 4, 4));
        at += 12 + qFromBigEndian<quint32>(file->constData() + at);
    }
    EXPECT_EQ(at, file->size());
    EXPECT_EQ(types, (QByteArrayList{"IHDR", "sRGB", "IDAT", "IEND"}));
}

TEST(PNGEncoder, AnotherColourSpaceIsConverted) {
    QImage wide(3, 1, QImage::Format_RGB32);
    wide.setPixel(0, 0, qRgb(200, 40, 10));
    wide.setPixel(1, 0, qRgb(0, 255, 0));
    wide.setPixel(2, 0, qRgb(128, 128, 128));
    wide.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    const auto file = ImageEncoder::encode(ScreenshotSaveFormat::png, wide);
    ASSERT_TRUE(file);
    const QByteArray pixels = readWithLibpng(*file);
    ASSERT_EQ(pixels.size(), 12);
    // A Display P3 red is further out than sRGB's: it becomes stronger, and grey stays grey.
    EXPECT_GT(static_cast<uchar>(pixels[0]), 210);
    EXPECT_LT(static_cast<uchar>(pixels[5]), 256);
    EXPECT_NEAR(static_cast<uchar>(pixels[8]), 128, 1);
    EXPECT_NEAR(static_cast<uchar>(pixels[10]), 128, 1);
}

TEST(JPEGEncoder, TransparentBecomesWhite) {
    QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    image.setDevicePixelRatio(2);
    const auto file = ImageEncoder::encode(ScreenshotSaveFormat::jpg, image);
    ASSERT_TRUE(file);
    const QImage read = QImage::fromData(*file, "JPG");
    ASSERT_EQ(read.size(), QSize(16, 16));
    for (const QPoint point : {QPoint(0, 0), QPoint(15, 15), QPoint(8, 3)})
        EXPECT_EQ(read.pixel(point), qRgb(255, 255, 255));
}

TEST(JPEGEncoder, KeepsColoursCloseWhateverTheFormat) {
    struct Case {
        const char* name;
        QImage image;
    };
    QImage colour(64, 48, QImage::Format_RGB32);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            reinterpret_cast<QRgb*>(colour.scanLine(y))[x] = qRgb(4 * x, 5 * y, 2 * (x + y)) & 0x00ffffffU;
    for (const Case& row :
         {Case{"capture", colour}, Case{"grey", colour.convertToFormat(QImage::Format_Grayscale8)},
          Case{"cutOut",
               QImage(colour.constScanLine(3) + 20, 33, 40, colour.bytesPerLine(), QImage::Format_RGB32)}}) {
        const auto file = ImageEncoder::encode(ScreenshotSaveFormat::jpg, row.image);
        ASSERT_TRUE(file) << row.name;
        const QImage read = QImage::fromData(*file, "JPG").convertToFormat(QImage::Format_RGB32);
        const QImage expected = row.image.convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(read.size(), expected.size()) << row.name;
        for (int y = 0; y < read.height(); ++y) {
            for (int x = 0; x < read.width(); ++x) {
                EXPECT_NEAR(qRed(read.pixel(x, y)), qRed(expected.pixel(x, y)), 6) << row.name;
                EXPECT_NEAR(qBlue(read.pixel(x, y)), qBlue(expected.pixel(x, y)), 8) << row.name;
            }
        }
    }
}

TEST(JPEGEncoder, NinetyFivePercentWithFullColourResolution) {
    const QTemporaryDir folder;
    const auto file = ImageEncoder::encode(ScreenshotSaveFormat::jpg, capture(50, 40));
    ASSERT_TRUE(file);
    const QString path = written(folder, QStringLiteral("picture.jpg"), *file);
    const QByteArray facts =
        runImageMagick({QStringLiteral("-format"), QStringLiteral("%Q %[jpeg:sampling-factor]"), path},
                       QStringLiteral("identify"));
    EXPECT_EQ(facts.trimmed(), "95 1x1,1x1,1x1");
}

TEST(ImageEncoder, WhatCannotBeEncodedIsAnError) {
    for (const auto format : {ScreenshotSaveFormat::png, ScreenshotSaveFormat::jpg}) {
        const auto file = ImageEncoder::encode(format, QImage());
        ASSERT_FALSE(file);
        EXPECT_EQ(file.error().domain, ImageEncoder::errorDomain);
        EXPECT_FALSE(file.error().description.isEmpty());
    }
    // JPEG's sides end at 65,500 pixels.
    const auto tooWide = ImageEncoder::encode(ScreenshotSaveFormat::jpg, capture(70000, 1));
    ASSERT_FALSE(tooWide);
    EXPECT_EQ(tooWide.error().domain, ImageEncoder::errorDomain);
}

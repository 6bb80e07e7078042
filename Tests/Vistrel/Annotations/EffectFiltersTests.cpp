#include "Annotations/EffectFilters.h"
#include "Vistrel/Annotations/TestPictures.h"

#include <QPainter>

#include <gtest/gtest.h>

using EffectFilters::Blocks;

namespace {

EffectFilters::Source wholeOf(const QImage& image) {
    return {image, {}, image.size()};
}

QImage blackOrWhite(QSize size, unsigned seed) {
    return noise(size, seed)
        .convertToFormat(QImage::Format_Mono, Qt::ThresholdDither)
        .convertToFormat(QImage::Format_RGB32);
}

} // namespace

TEST(EffectFilters, blurIsWithinOneLevelOfTheExactConvolution) {
    QImage step(230, 30, QImage::Format_RGB32);
    step.fill(Qt::black);
    QPainter(&step).fillRect(115, 0, 115, 30, Qt::white);
    QImage corner(120, 120, QImage::Format_RGB32);
    corner.fill(Qt::black);
    corner.setPixel(0, 0, qRgb(255, 255, 255));
    QImage stripes(140, 101, QImage::Format_RGB32);
    for (int y = 0; y < stripes.height(); ++y)
        for (int x = 0; x < stripes.width(); ++x)
            stripes.setPixel(x, y, x % 4 == 0 ? qRgb(255, 255, 255) : qRgb(0, y % 4 == 3 ? 255 : 0, 0));
    const std::pair<const char*, QImage> cases[] = {
        {"noise", noise({151, 97}, 1)},
        {"contrast", blackOrWhite({130, 90}, 2)},
        {"step", step},
        {"brightCorner", corner},
        {"linesOnTheKeptRaster", stripes},
        {"narrow", noise({3, 170}, 3)},
        {"onePixel", noise({1, 1}, 4)},
        {"smallerThanTheKernel", blackOrWhite({17, 29}, 5)},
    };
    for (const auto& [name, image] : cases) {
        const QImage blurred = EffectFilters::blur(wholeOf(image), image.rect());
        const QImage exact = TestPictures::exactBlur(image, EffectFilters::blurSigma);
        EXPECT_LE(TestPictures::largestDifference(blurred, exact), 1) << name;
        EXPECT_EQ(qAlpha(blurred.pixel(0, 0)), 255) << name;
    }
}

TEST(EffectFilters, blurOfPartsIsThePartOfTheBlur) {
    const QImage image = blackOrWhite({700, 420}, 6);
    const QImage whole = EffectFilters::blurOnOneThread(wholeOf(image), image.rect());
    EXPECT_EQ(EffectFilters::blur(wholeOf(image), image.rect()), whole);
    for (const QRect& area :
         {QRect(0, 0, 1, 1), QRect(301, 203, 17, 5), QRect(690, 1, 10, 419), QRect(128, 128, 128, 128)}) {
        constexpr int reach = EffectFilters::blurReach;
        const QRect atHand = area.adjusted(-reach, -reach, reach, reach) & image.rect();
        const QImage part = image.copy(atHand);
        EXPECT_EQ(EffectFilters::blur({part, atHand.topLeft(), image.size()}, area), whole.copy(area));
    }
}

TEST(EffectFilters, blocksStartOnWholePixels) {
    using Starts = std::vector<int>;
    const std::tuple<double, double, Starts> cases[] = {
        {11.9999999, 12, {0, 12, 24, 36}},
        {0.3, 1, {0, 1, 2, 3}},
        {std::numeric_limits<double>::quiet_NaN(), 1, {0, 1, 2, 3}},
        {2.5, 2.5, {0, 3, 5, 8}},
        {7.2, 7.2, {0, 7, 14, 22}},
    };
    for (const auto& [wanted, edge, starts] : cases) {
        const Blocks blocks = Blocks::ofEdge(wanted, 500);
        EXPECT_EQ(blocks.edge, edge);
        EXPECT_EQ((Starts{blocks.left(0), blocks.left(1), blocks.left(2), blocks.left(3)}), starts);
        for (int pixel = 0; pixel < 500; ++pixel) {
            const int column = blocks.columnAt(pixel);
            EXPECT_TRUE(blocks.left(column) <= pixel && pixel < blocks.left(column + 1)) << pixel;
            const int row = blocks.rowAt(pixel);
            EXPECT_TRUE(blocks.top(row) <= pixel && pixel < blocks.top(row + 1)) << pixel;
            EXPECT_EQ(blocks.top(row), 500 - blocks.left(blocks.columnAt(499 - pixel) + 1))
                << "the rows are the columns from the bottom edge";
        }
    }
}

TEST(EffectFilters, everyBlockGetsTheMeanOfItsPixelsInThePicture) {
    const QImage image = noise({67, 45}, 8);
    for (const double edge : {1.0, 2.0, 2.5, 7.0, 12.0, 99.0}) {
        const Blocks blocks = Blocks::ofEdge(edge, image.height());
        const QImage result = EffectFilters::pixelate(wholeOf(image), image.rect(), blocks);
        EXPECT_EQ(result, TestPictures::exactBlocks(image, blocks)) << edge;
    }
}

#include "Annotations/EffectFilters.h"
#include "Vistrel/Annotations/TestPictures.h"

#include <gtest/gtest.h>

using EffectFilters::Blocks;

namespace {

EffectFilters::Source wholeOf(const QImage& image) {
    return {image, {}, image.size()};
}

struct BlurCase {
    const char* name;
    QImage image;
};

std::vector<BlurCase> blurCases() {
    QImage step(230, 90, QImage::Format_RGB32);
    step.fill(Qt::black);
    for (int y = 0; y < step.height(); ++y)
        for (int x = 115; x < step.width(); ++x)
            step.setPixel(x, y, qRgb(255, 255, 255));
    QImage corner(120, 120, QImage::Format_RGB32);
    corner.fill(Qt::black);
    corner.setPixel(0, 0, qRgb(255, 255, 255));
    QImage stripes(140, 101, QImage::Format_RGB32);
    for (int y = 0; y < stripes.height(); ++y)
        for (int x = 0; x < stripes.width(); ++x)
            stripes.setPixel(x, y, x % 4 == 0 ? qRgb(255, 255, 255) : qRgb(0, y % 4 == 3 ? 255 : 0, 0));
    return {{"noise", TestPictures::noise({211, 157}, 1)},
            {"contrast", TestPictures::blackOrWhite({190, 130}, 2)},
            {"step", step},
            {"brightCorner", corner},
            {"linesOnTheKeptRaster", stripes},
            {"narrow", TestPictures::noise({3, 170}, 3)},
            {"onePixel", TestPictures::noise({1, 1}, 4)},
            {"smallerThanTheKernel", TestPictures::blackOrWhite({17, 29}, 5)}};
}

} // namespace

TEST(EffectFilters, blurIsWithinOneLevelOfTheExactConvolution) {
    for (const BlurCase& c : blurCases()) {
        const QImage exact = TestPictures::exactBlur(c.image, EffectFilters::blurSigma);
        const QImage blurred = EffectFilters::blur(wholeOf(c.image), c.image.rect());
        EXPECT_LE(TestPictures::largestDifference(blurred, exact), 1) << c.name;
        EXPECT_EQ(qAlpha(blurred.pixel(0, 0)), 255) << c.name;
    }
}

TEST(EffectFilters, blurOfPartsIsThePartOfTheBlur) {
    const QImage image = TestPictures::blackOrWhite({700, 420}, 6);
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

struct BlocksCase {
    double wanted;
    double edge;
    std::vector<int> starts;
};

TEST(EffectFilters, blocksStartOnWholePixels) {
    const BlocksCase cases[] = {
        {12, 12, {0, 12, 24, 36}},    {11.9999999, 12, {0, 12, 24, 36}},
        {0.3, 1, {0, 1, 2, 3}},       {std::numeric_limits<double>::quiet_NaN(), 1, {0, 1, 2, 3}},
        {2.5, 2.5, {0, 3, 5, 8, 10}}, {7.2, 7.2, {0, 7, 14, 22, 29}},
    };
    for (const BlocksCase& c : cases) {
        const Blocks blocks = Blocks::ofEdge(c.wanted);
        EXPECT_EQ(blocks.edge, c.edge);
        for (int i = 0; i < static_cast<int>(c.starts.size()); ++i)
            EXPECT_EQ(blocks.start(i), c.starts[static_cast<std::size_t>(i)]) << c.wanted;
        for (int pixel = 0; pixel < 500; ++pixel) {
            const int index = blocks.indexAt(pixel);
            EXPECT_TRUE(blocks.start(index) <= pixel && pixel < blocks.start(index + 1)) << pixel;
        }
    }
}

TEST(EffectFilters, everyBlockGetsTheMeanOfItsPixelsInThePicture) {
    const QImage image = TestPictures::noise({67, 45}, 8);
    for (const double edge : {1.0, 2.0, 2.5, 7.0, 12.0, 99.0}) {
        const Blocks blocks = Blocks::ofEdge(edge);
        const QImage result = EffectFilters::pixelate(wholeOf(image), image.rect(), blocks);
        EXPECT_EQ(result, TestPictures::exactBlocks(image, blocks)) << edge;
    }
}

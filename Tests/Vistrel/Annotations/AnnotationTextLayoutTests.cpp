#include "Annotations/AnnotationTextLayout.h"

#include "Annotations/ViewFlip.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr Size plenty = {10000, 10000};

double lineHeight(double fontSize) {
    // Lines stand a whole number of the font's own pixels apart.
    return std::ceil(QFontMetricsF(AnnotationTextLayout::font(fontSize)).lineSpacing()) *
           AnnotationTextLayout::scale(fontSize);
}

Size sizeOf(const QString& text, double fontSize = 20, Size available = plenty) {
    return AnnotationTextLayout::size(text, fontSize, available);
}

/// The area of dark pixels after a text layer is painted in a box at the top of a white picture.
QRect inkOf(const QString& text, double fontSize, Size box, double scale = 1) {
    QImage image(int(400 * scale), int(300 * scale), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.scale(scale, scale);
    ViewFlip{300}.apply(painter);
    AnnotationTextLayout::draw({.id = {},
                                .tool = AnnotationTool::text,
                                .width = fontSize,
                                .size = {},
                                .color = Qt::black,
                                .points = {{50, 300 - box.height}, {50 + box.width, 300}},
                                .text = text},
                               painter);
    QRect ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) < 160)
                ink |= QRect(x, y, 1, 1);
    return ink;
}

} // namespace

TEST(AnnotationTextLayout, everyLineFeedMakesRoom) {
    for (const auto& [text, lines] : {std::pair("", 1), {"word\n", 2}, {"\n\n", 3}, {"a\n\nb", 3}})
        for (const double fontSize : {7.0, 19.2, 99.0})
            EXPECT_EQ(sizeOf(QString::fromLatin1(text), fontSize).height,
                      std::ceil(lines * lineHeight(fontSize)))
                << text << " " << fontSize;
}

TEST(AnnotationTextLayout, availableSizeLimitsTheBox) {
    const QString text = u"several words that need more than one line"_s;
    const Size free = sizeOf(text);
    const Size narrow = sizeOf(text, 20, {free.width / 2.5, 10000});
    EXPECT_EQ(narrow.width, free.width / 2.5);
    EXPECT_GE(narrow.height, 3 * lineHeight(20));
    EXPECT_EQ(sizeOf(text, 20, {free.width / 2.5, 30}).height, 30);
    EXPECT_EQ(sizeOf(text, 20, {-5, -5}), (Size{1, 1}));
    EXPECT_GE(sizeOf(u"oneverylongword"_s, 20, {40, 10000}).height, 3 * lineHeight(20))
        << "a word wider than the box is broken";
}

TEST(AnnotationTextLayout, paintsWithinTheMeasuredBoxAtEveryScale) {
    const QString text = u"Hamburg\nfonts"_s;
    for (const double fontSize : {12.0, 19.2, 30.0}) {
        for (const double scale : {1.0, 1.25, 2.0}) {
            const Size box = sizeOf(text, fontSize);
            const QRect ink = inkOf(text, fontSize, box, scale);
            const QRectF area(50 * scale, 0, box.width * scale, box.height * scale);
            EXPECT_TRUE(area.adjusted(-1, 0, 1, 0).contains(QRectF(ink))) << fontSize << " " << scale;
            EXPECT_GT(ink.width(), 0.8 * area.width());
            EXPECT_GT(ink.height(), 0.55 * area.height());
        }
    }
}

TEST(AnnotationTextLayout, textFromRightToLeftStandsAtTheRight) {
    const QRect hebrew = inkOf(u"שלום"_s, 20, {300, 40});
    const QRect latin = inkOf(u"word"_s, 20, {300, 40});
    EXPECT_LT(latin.left(), 60);
    EXPECT_GT(hebrew.right(), 340);
    EXPECT_GT(hebrew.left(), 250);
    const QRect mixed = inkOf(u"word\nשלום"_s, 20, {300, 80});
    EXPECT_LT(mixed.left(), 60);
    EXPECT_GT(mixed.right(), 340) << "every paragraph has its own direction";
}

#include "App/VistrelIcon.h"

#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(VistrelIcon, EveryPartIsWhereItBelongs) {
    QImage image(1000, 1000, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    VistrelIcon::draw(painter, QRectF(image.rect()), Qt::red);
    painter.end();
    // The corners' brackets, the ring's left and top, and its dot at the upper right.
    for (const QPoint inked : {QPoint(10, 10), {990, 990}, {270, 20}, {180, 500}, {500, 180}, {830, 170}})
        EXPECT_EQ(image.pixel(inked), qRgb(255, 0, 0)) << inked.x() << ' ' << inked.y();
    for (const QPoint empty : {QPoint(500, 20), {500, 500}, {830, 830}, {170, 170}})
        EXPECT_EQ(image.pixel(empty), 0U) << empty.x() << ' ' << empty.y();
}

TEST(VistrelIcon, ThePicturesOfTheSetShowTheGlyphOnItsGround) {
    const QTemporaryDir folder;
    ASSERT_TRUE(VistrelIcon::exportIconset(folder.path()));
    const QImage largest(folder.filePath(u"icon_512x512@2x.png"_s));
    EXPECT_EQ(largest.pixel(0, 0), 0U);
    EXPECT_EQ(largest.pixel(512, 100), QColor::fromRgbF(0.92F, 0.96F, 1.0F).rgba());
    EXPECT_EQ(largest.pixel(258, 258), QColor::fromRgbF(0.1F, 0.34F, 0.82F).rgba());
}

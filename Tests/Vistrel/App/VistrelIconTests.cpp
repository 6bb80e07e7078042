#include "App/VistrelIcon.h"

#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Spot {
    const char* name;
    double x, y;
    bool inked;
};

} // namespace

TEST(VistrelIcon, EveryPartIsWhereItBelongs) {
    QImage image(1000, 1000, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    VistrelIcon::draw(painter, QRectF(image.rect()), Qt::red);
    painter.end();
    for (const Spot& spot : {
             Spot{"topLeftCorner", 0.01, 0.01, true},
             Spot{"bottomRightCorner", 0.99, 0.99, true},
             Spot{"bracketsArm", 0.27, 0.02, true},
             Spot{"betweenArms", 0.5, 0.02, false},
             Spot{"ringsLeft", 0.18, 0.5, true},
             Spot{"ringsTop", 0.5, 0.18, true},
             Spot{"insideRing", 0.5, 0.5, false},
             Spot{"dotTopRight", 0.83, 0.17, true},
             Spot{"noDotBelow", 0.83, 0.83, false},
             Spot{"noDotLeft", 0.17, 0.17, false},
         }) {
        const QRgb pixel = image.pixel(static_cast<int>(spot.x * 1000), static_cast<int>(spot.y * 1000));
        EXPECT_EQ(pixel, spot.inked ? qRgb(255, 0, 0) : 0U) << spot.name;
    }
}

TEST(VistrelIcon, AWideImageHoldsTheGlyphInItsMiddle) {
    const QImage image = VistrelIcon::image(QSizeF(32, 18), 2);
    EXPECT_EQ(image.size(), QSize(64, 36));
    QRect inked;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 0)
                inked |= QRect(x, y, 1, 1);
        }
    }
    EXPECT_EQ(inked.left() - 14, 49 - inked.right());
    EXPECT_GE(inked.left(), 14);
    EXPECT_GT(inked.width(), 33);
    EXPECT_EQ(VistrelIcon::icon().pixmap(QSize(22, 22), 1).size(), QSize(22, 22));
}

TEST(VistrelIcon, ThePicturesOfTheSetShowTheGlyphOnItsGround) {
    const QTemporaryDir folder;
    ASSERT_TRUE(VistrelIcon::exportIconset(folder.path()));
    const QImage largest(folder.filePath(QStringLiteral("icon_512x512@2x.png")));
    EXPECT_EQ(largest.pixel(0, 0), 0U);
    EXPECT_EQ(largest.pixel(512, 100), QColor::fromRgbF(0.92F, 0.96F, 1.0F).rgba());
    EXPECT_EQ(largest.pixel(258, 258), QColor::fromRgbF(0.1F, 0.34F, 0.82F).rgba());
}

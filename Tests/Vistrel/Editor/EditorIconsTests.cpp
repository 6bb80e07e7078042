#include "Editor/EditorIcons.h"

#include "Annotations/AnnotationTool.h"

#include <gtest/gtest.h>

struct VariantCase {
    const char* name;
    double size;
    double ratio;
    int expected;
};
const VariantCase variantCases[] = {
    {"row", 20, 1, 64},       {"upTo32", 32, 1, 64},     {"above32", 32.5, 1, 128},
    {"tool", 40, 1, 128},     {"upTo64", 64, 1, 128},    {"above64", 65, 1, 256},
    {"rowOnTwo", 20, 2, 128}, {"toolOnTwo", 40, 2, 256}, {"toolOnOneAndAHalf", 40, 1.5, 128},
};

TEST(EditorIconsTests, picturesAreChosenByTheirSizeOnTheScreen) {
    for (const VariantCase& c : variantCases) {
        const auto icon =
            EditorIcons::image(QStringLiteral("pen"), QStringLiteral("pencil.tip"), c.size, c.ratio);
        ASSERT_TRUE(icon) << c.name;
        EXPECT_EQ(icon->image.width(), c.expected) << c.name;
        EXPECT_EQ(icon->size, c.size) << c.name;
    }
}

TEST(EditorIconsTests, everyIconIsThereAtEverySizeAndPaintsSomethingInsideItsMargin) {
    QStringList names = QStringLiteral("undo redo trash recording share save copy capture settings "
                                       "launch-at-login quit")
                            .split(QLatin1Char(' '));
    for (const AnnotationTool tool : AnnotationTools::displayOrder)
        names << AnnotationTools::name(tool);
    for (const QString& name : names) {
        for (const double size : {20.0, 40.0, 80.0}) {
            const auto icon = EditorIcons::image(name, QString(), size);
            ASSERT_TRUE(icon) << name.toStdString();
            const QImage& image = icon->image;
            int painted = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    painted += qAlpha(image.pixel(x, y)) > 127 ? 1 : 0;
            EXPECT_GT(painted, image.width()) << name.toStdString();
            for (int i = 0; i < image.width(); ++i) {
                EXPECT_EQ(qAlpha(image.pixel(i, 0)), 0) << name.toStdString();
                EXPECT_EQ(qAlpha(image.pixel(0, i)), 0) << name.toStdString();
            }
            EXPECT_EQ(icon->isTemplate, name != QLatin1String("pixelate")) << name.toStdString();
        }
    }
}

TEST(EditorIconsTests, templatesTakeTheColourAndTheOthersKeepTheirs) {
    const auto pen = EditorIcons::image(QStringLiteral("pen"), QString(), 32);
    const QImage red = pen->pixmap(Qt::red, 1).toImage().convertToFormat(QImage::Format_ARGB32);
    const auto mosaic = EditorIcons::image(QStringLiteral("pixelate"), QString(), 32);
    const QImage own = mosaic->pixmap(Qt::red, 1).toImage().convertToFormat(QImage::Format_ARGB32);
    bool foreign = false;
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x) {
            const QColor color = red.pixelColor(x, y);
            if (color.alpha() > 250) {
                EXPECT_EQ(color.rgb(), QColor(Qt::red).rgb());
            }
            foreign = foreign || (own.pixelColor(x, y).alpha() > 250 && own.pixelColor(x, y).blue() > 100);
        }
    }
    EXPECT_TRUE(foreign);
}

TEST(EditorIconsTests, pixmapsHaveExactlyTheirDevicePixels) {
    const auto icon = EditorIcons::image(QStringLiteral("copy"), QString(), 31.2, 1.25);
    const QPixmap pixmap = icon->pixmap(Qt::black, 1.25);
    EXPECT_EQ(pixmap.width(), 39);
    EXPECT_EQ(pixmap.devicePixelRatio(), 1.25);
    EXPECT_TRUE(EditorIcon{}.pixmap(Qt::black, 1).isNull());
}

TEST(EditorIconsTests, unknownIconsWithoutAThemeNameAreNone) {
    EXPECT_FALSE(EditorIcons::image(QStringLiteral("no-such-icon"), QStringLiteral("no.such.symbol"), 20));
}

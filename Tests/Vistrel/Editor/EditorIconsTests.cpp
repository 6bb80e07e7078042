#include "Editor/EditorIcons.h"

#include "Annotations/AnnotationTool.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(EditorIconsTests, everyIconIsThereAtEverySizeAndPaintsSomethingInsideItsMargin) {
    QStringList names = u"undo redo trash recording share save copy capture settings "
                        "launch-at-login quit"_s.split(QLatin1Char(' '));
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
        }
    }
}

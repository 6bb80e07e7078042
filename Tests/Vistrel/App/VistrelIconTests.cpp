#include "App/VistrelIcon.h"

#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(VistrelIcon, ThePicturesOfTheSetShowTheGlyphOnItsGround) {
    const QTemporaryDir folder;
    ASSERT_TRUE(VistrelIcon::exportIconset(folder.path()));
    const QImage largest(folder.filePath(u"icon_512x512@2x.png"_s));
    EXPECT_EQ(largest.pixel(0, 0), 0U);
    EXPECT_EQ(largest.pixel(512, 100), QColor::fromRgbF(0.92F, 0.96F, 1.0F).rgba());
    EXPECT_EQ(largest.pixel(258, 258), QColor::fromRgbF(0.1F, 0.34F, 0.82F).rgba());
}

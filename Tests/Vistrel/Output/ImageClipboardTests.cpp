#include "Output/ImageClipboard.h"

#include <QMimeData>

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

TEST(ImageClipboard, OffersExactlyTheBytesAndTellsARefusal) {
    bool owned = true;
    std::unique_ptr<QMimeData> offered;
    ImageClipboard clipboard(
        {.set = [&offered](QMimeData* data) { offered.reset(data); }, .owned = [&owned] { return owned; }});
    const QByteArray png("\x89PNG\r\n\x1a\n\0rest", 13);
    EXPECT_TRUE(clipboard.copyPNG(png));
    ASSERT_TRUE(offered);
    EXPECT_EQ(offered->formats(), QStringList{u"image/png"_s});
    EXPECT_EQ(offered->data(u"image/png"_s), png);
    owned = false;
    EXPECT_FALSE(clipboard.copyPNG(png));
}

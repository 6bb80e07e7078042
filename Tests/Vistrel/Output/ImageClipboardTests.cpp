#include "Output/ImageClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <gtest/gtest.h>

#include <memory>

TEST(ImageClipboard, OffersExactlyTheBytes) {
    std::unique_ptr<QMimeData> offered;
    ImageClipboard clipboard(
        {.set = [&offered](QMimeData* data) { offered.reset(data); }, .owned = [] { return true; }});
    const QByteArray png("\x89PNG\r\n\x1a\n\0rest", 13);
    EXPECT_TRUE(clipboard.copyPNG(png));
    ASSERT_TRUE(offered);
    EXPECT_EQ(offered->formats(), QStringList{QStringLiteral("image/png")});
    EXPECT_EQ(offered->data(QStringLiteral("image/png")), png);
}

TEST(ImageClipboard, RefusedIsReported) {
    ImageClipboard clipboard({.set = [](QMimeData* data) { delete data; }, .owned = [] { return false; }});
    EXPECT_FALSE(clipboard.copyPNG("bytes"));
}

TEST(ImageClipboard, TheApplicationsClipboardHoldsThePicture) {
    ImageClipboard clipboard;
    clipboard.copyPNG("first");
    const bool owned = clipboard.copyPNG("second");
    EXPECT_EQ(owned, QGuiApplication::clipboard()->ownsClipboard());
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->data(QStringLiteral("image/png")), "second");
}

#include "Output/ImageFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace {

QImage picture(QRgb colour) {
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(colour);
    for (int i = 0; i < 300; ++i)
        image.setPixel(i, i, colour ^ static_cast<QRgb>(i * 977));
    return image;
}

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// No file of this process may grow beyond a few bytes, as on a disk that is full.
class FullDisk {
public:
    FullDisk() {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &before);
        rlimit limit = before;
        limit.rlim_cur = 16;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, SIG_DFL);
    }

private:
    rlimit before{};
};

} // namespace

TEST(ImageFile, ReplacesWholeAndLeavesNothingBeside) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Écran 1.png"));
    ASSERT_TRUE(saveImage(path, ScreenshotSaveFormat::png, picture(qRgb(1, 2, 3))));
    ASSERT_TRUE(saveImage(path, ScreenshotSaveFormat::png, picture(qRgb(200, 2, 3))));
    EXPECT_EQ(QImage(path).pixel(399, 0), qRgb(200, 2, 3));
    ASSERT_TRUE(saveImage(folder.filePath(QStringLiteral("b.jpg")), ScreenshotSaveFormat::jpg, picture(0)));
    EXPECT_TRUE(contents(folder.filePath(QStringLiteral("b.jpg"))).startsWith("\xff\xd8\xff"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(),
              2);
}

TEST(ImageFile, FullDiskKeepsTheOlderFile) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.png"));
    ASSERT_TRUE(saveImage(path, ScreenshotSaveFormat::png, picture(qRgb(1, 2, 3))));
    const QByteArray before = contents(path);
    Result<void> outcome;
    {
        const FullDisk full;
        outcome = saveImage(path, ScreenshotSaveFormat::png, picture(qRgb(9, 9, 9)));
    }
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().domain, ErrorDomain::system);
    EXPECT_EQ(outcome.error().code, EFBIG);
    EXPECT_EQ(contents(path), before);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(),
              1);
}

TEST(ImageFile, WhereNothingCanBeWrittenTheSystemSaysWhy) {
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("taken.png")));
    const std::pair<QString, int> rows[] = {
        {folder.filePath(QStringLiteral("gone/a.png")), ENOENT},
        {folder.filePath(QStringLiteral("taken.png")), EISDIR},
        {QStringLiteral("/dev/null/a.png"), ENOTDIR},
    };
    for (const auto& [path, code] : rows) {
        const Result<void> outcome = saveImage(path, ScreenshotSaveFormat::png, picture(0));
        ASSERT_FALSE(outcome) << code;
        EXPECT_EQ(outcome.error().code, code);
        EXPECT_EQ(outcome.error().description, QString::fromLocal8Bit(std::strerror(code)));
    }
}

#include "Support/ReadOnlyFolder.h"
#include "VistrelPlatform/System/AtomicFile.h"
#include "VistrelPlatform/System/Files.h"

#include <QTemporaryDir>

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

class AtomicFileTests : public ::testing::Test {
protected:
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file.bin"));

    mode_t mode() const {
        struct stat facts {};
        return ::stat(QFile::encodeName(path).constData(), &facts) == 0 ? facts.st_mode & 07777 : 0;
    }
    QStringList entries() const {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
};

TEST_F(AtomicFileTests, replacesContentAndLeavesNothingBehind) {
    ASSERT_TRUE(writeAtomically(path, "old and longer"));
    ASSERT_TRUE(writeAtomically(path, QByteArray("\0new", 4)));
    EXPECT_EQ(Files::read(path, 100), QByteArray("\0new", 4));
    EXPECT_EQ(entries(), QStringList{QStringLiteral("file.bin")});
}

TEST_F(AtomicFileTests, permissionsAreTheGivenTheFormerOrTheUsual) {
    const mode_t mask = ::umask(022);
    ASSERT_TRUE(writeAtomically(path, "a"));
    EXPECT_EQ(mode(), 0644U);
    ASSERT_TRUE(writeAtomically(path, "b", 0600));
    EXPECT_EQ(mode(), 0600U);
    ASSERT_TRUE(writeAtomically(path, "c"));
    EXPECT_EQ(mode(), 0600U);
    ::umask(mask);
}

TEST_F(AtomicFileTests, aMissingFolderIsTheSystemsError) {
    const Result<void> written = writeAtomically(folder.filePath(QStringLiteral("no/file")), "x");
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error(), (Error{ErrorDomain::system, ENOENT, qt_error_string(ENOENT)}));
}

TEST_F(AtomicFileTests, aReadOnlyFolderKeepsTheOldFile) {
    ASSERT_TRUE(writeAtomically(path, "old"));
    const ReadOnlyFolder readOnly(folder.path());
    ASSERT_TRUE(readOnly.inForce());
    const Result<void> written = writeAtomically(path, "new");
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, EACCES);
    EXPECT_EQ(Files::read(path, 100), QByteArray("old"));
}

TEST_F(AtomicFileTests, whenTheDiskIsFullTheOldFileStaysAndThePartIsRemoved) {
    ASSERT_TRUE(writeAtomically(path, "old"));
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{4096, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const Result<void> written = writeAtomically(path, QByteArray(8192, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, EFBIG);
    EXPECT_EQ(Files::read(path, 100), QByteArray("old"));
    EXPECT_EQ(entries(), QStringList{QStringLiteral("file.bin")});
}

TEST_F(AtomicFileTests, remainsOfInterruptedWritesAreRemovedAndNothingElse) {
    for (const char* name :
         {".file.bin.vistrel-1x", ".file.bin", "file.bin.vistrel-1x", ".other.bin.vistrel-1"})
        ASSERT_TRUE(writeAtomically(folder.filePath(QString::fromLatin1(name)), "x"));
    removeInterruptedWrites(path);
    EXPECT_EQ(entries(), (QStringList{QStringLiteral(".file.bin"), QStringLiteral(".other.bin.vistrel-1"),
                                      QStringLiteral("file.bin.vistrel-1x")}));
}

TEST_F(AtomicFileTests, readingIsBoundedAndNeverBlocks) {
    ASSERT_TRUE(writeAtomically(path, QByteArray(100, 'x')));
    EXPECT_TRUE(Files::read(path, 100));
    EXPECT_EQ(Files::read(path, 99).error().code, EFBIG);
    EXPECT_EQ(Files::read(folder.path(), 100).error().code, EISDIR);
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(Files::read(pipe, 100).error().code, EINVAL);
    EXPECT_FALSE(Files::read(QStringLiteral("/dev/zero"), 100));
}

TEST_F(AtomicFileTests, foldersAreMadeWithTheirParentsAndAFileInTheWayIsAnError) {
    const QString deep = folder.filePath(QStringLiteral("a/b/../b/c"));
    ASSERT_TRUE(Files::createFolder(deep));
    ASSERT_TRUE(Files::createFolder(deep));
    struct stat facts {};
    for (const char* name : {"a", "a/b", "a/b/c"}) {
        ASSERT_EQ(::stat(QFile::encodeName(folder.filePath(QString::fromLatin1(name))).constData(), &facts),
                  0);
        EXPECT_EQ(facts.st_mode & 0777, 0700U) << name;
    }
    ASSERT_TRUE(writeAtomically(path, "x"));
    EXPECT_EQ(Files::createFolder(path).error().code, ENOTDIR);
    EXPECT_EQ(Files::createFolder(path + QStringLiteral("/below")).error().code, ENOTDIR);
}

} // namespace

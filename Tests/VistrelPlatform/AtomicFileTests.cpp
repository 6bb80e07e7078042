#include "Support/ReadOnlyFolder.h"
#include "Support/TestFiles.h"
#include "VistrelPlatform/System/AtomicFile.h"
#include "VistrelPlatform/System/Files.h"

#include <QTemporaryDir>

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

class AtomicFileTests : public ::testing::Test {
protected:
    mode_t mode(const QString& name = u"file.bin"_s) const {
        struct stat facts {};
        return ::stat(QFile::encodeName(folder.filePath(name)).constData(), &facts) == 0
                   ? facts.st_mode & 07777
                   : 0;
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(u"file.bin"_s);
};

} // namespace

TEST_F(AtomicFileTests, contentIsReplacedAndPermissionsAreTheGivenTheFormerOrTheUsual) {
    const mode_t mask = ::umask(022);
    ASSERT_TRUE(writeAtomically(path, "old and longer"));
    EXPECT_EQ(mode(), 0644U);
    ASSERT_TRUE(writeAtomically(path, QByteArray("\0new", 4), 0600));
    EXPECT_EQ(Files::read(path, 100), QByteArray("\0new", 4));
    EXPECT_EQ(mode(), 0600U);
    ASSERT_TRUE(writeAtomically(path, "c"));
    EXPECT_EQ(mode(), 0600U);
    ::umask(mask);
    EXPECT_EQ(entriesOf(folder.path()), QStringList{u"file.bin"_s});
    EXPECT_EQ(writeAtomically(folder.filePath(u"no/file"_s), "x").error(),
              (Error{ErrorDomain::system, ENOENT, qt_error_string(ENOENT)}));
}

TEST_F(AtomicFileTests, whenItCannotBeWrittenTheOldFileStaysAndNothingElse) {
    ASSERT_TRUE(writeAtomically(path, "old"));
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{4096, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const Result<void> full = writeAtomically(path, QByteArray(8192, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(full);
    EXPECT_EQ(full.error().code, EFBIG);

    const ReadOnlyFolder readOnly(folder.path());
    ASSERT_TRUE(readOnly.inForce());
    const Result<void> forbidden = writeAtomically(path, "new");
    ASSERT_FALSE(forbidden);
    EXPECT_EQ(forbidden.error().code, EACCES);
    EXPECT_EQ(Files::read(path, 100), QByteArray("old"));
    EXPECT_EQ(entriesOf(folder.path()), QStringList{u"file.bin"_s});
}

TEST_F(AtomicFileTests, remainsOfInterruptedWritesAreRemovedAndNothingElse) {
    for (const char* name :
         {".file.bin.vistrel-1x", ".file.bin", "file.bin.vistrel-1x", ".other.bin.vistrel-1"})
        writeFile(folder.filePath(QString::fromLatin1(name)), "x");
    removeInterruptedWrites(path);
    EXPECT_EQ(entriesOf(folder.path()),
              (QStringList{u".file.bin"_s, u".other.bin.vistrel-1"_s, u"file.bin.vistrel-1x"_s}));
}

TEST_F(AtomicFileTests, readingIsBoundedAndNeverBlocks) {
    writeFile(path, QByteArray(100, 'x'));
    EXPECT_TRUE(Files::read(path, 100));
    EXPECT_EQ(Files::read(path, 99).error().code, EFBIG);
    EXPECT_EQ(Files::read(folder.path(), 100).error().code, EISDIR);
    const QString pipe = folder.filePath(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(Files::read(pipe, 100).error().code, EINVAL);
    EXPECT_FALSE(Files::read(u"/dev/zero"_s, 100));
}

TEST_F(AtomicFileTests, foldersAreMadeWithTheirParentsAndAFileInTheWayIsAnError) {
    for (int time = 0; time < 2; ++time)
        ASSERT_TRUE(Files::createFolder(folder.filePath(u"a/b/../b/c"_s)));
    for (const QString& name : {u"a"_s, u"a/b"_s, u"a/b/c"_s})
        EXPECT_EQ(mode(name), 0700U) << name.toStdString();
    writeFile(path, "x");
    EXPECT_EQ(Files::createFolder(path).error().code, ENOTDIR);
    EXPECT_EQ(Files::createFolder(path + u"/below"_s).error().code, ENOTDIR);
}

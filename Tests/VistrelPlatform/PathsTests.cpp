#include "Support/ScopedEnvironment.h"
#include "VistrelPlatform/System/Paths.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

struct FolderCase {
    const char* name;
    const char* home;
    const char* variable; // null when unset
    const char* expected;
};
const FolderCase dataCases[] = {
    {"unset", "/home/u", nullptr, "/home/u/.local/share/Vistrel"},
    {"empty", "/home/u", "", "/home/u/.local/share/Vistrel"},
    {"relativeIsIgnored", "/home/u", "data", "/home/u/.local/share/Vistrel"},
    {"set", "/home/u", "/srv/data/", "/srv/data/Vistrel"},
};

TEST(PathsTests, dataFollowsTheEnvironment) {
    for (const FolderCase& row : dataCases) {
        SCOPED_TRACE(row.name);
        const ScopedEnvironment home("HOME", row.home);
        const ScopedEnvironment data("XDG_DATA_HOME", QByteArray(row.variable));
        EXPECT_EQ(Paths::data(), QString::fromLatin1(row.expected));
    }
}

TEST(PathsTests, everyFolderHasItsOwnVariableAndDefault) {
    const ScopedEnvironment home("HOME", "/home/u");
    const ScopedEnvironment config("XDG_CONFIG_HOME", QByteArray());
    const ScopedEnvironment cache("XDG_CACHE_HOME", QByteArray());
    EXPECT_EQ(Paths::config(), QStringLiteral("/home/u/.config/Vistrel"));
    EXPECT_EQ(Paths::configHome(), QStringLiteral("/home/u/.config"));
    EXPECT_EQ(Paths::cache(), QStringLiteral("/home/u/.cache/Vistrel"));
    const ScopedEnvironment otherConfig("XDG_CONFIG_HOME", "/c");
    const ScopedEnvironment otherCache("XDG_CACHE_HOME", "/k");
    EXPECT_EQ(Paths::config(), QStringLiteral("/c/Vistrel"));
    EXPECT_EQ(Paths::cache(), QStringLiteral("/k/Vistrel"));
}

TEST(PathsTests, withoutHomeTheAccountTells) {
    const ScopedEnvironment home("HOME", QByteArray());
    const ScopedEnvironment data("XDG_DATA_HOME", QByteArray());
    EXPECT_TRUE(QDir::isAbsolutePath(Paths::data()));
}

TEST(PathsTests, theRuntimeFolderIsPrivateOrRefused) {
    QTemporaryDir folder;
    const ScopedEnvironment session("XDG_RUNTIME_DIR", QFile::encodeName(folder.path()));
    const Result<QString> made = Paths::runtime();
    ASSERT_TRUE(made.has_value());
    struct stat facts {};
    ASSERT_EQ(::stat(QFile::encodeName(*made).constData(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0700U);

    ASSERT_EQ(::chmod(QFile::encodeName(*made).constData(), 0777), 0);
    EXPECT_FALSE(Paths::runtime().has_value()) << "others could put files there";
    ASSERT_TRUE(QDir(*made).removeRecursively());
    ASSERT_TRUE(QFile::link(folder.path(), *made));
    EXPECT_FALSE(Paths::runtime().has_value()) << "a link leads elsewhere";
}

} // namespace

#include "Support/ScopedEnvironment.h"
#include "VistrelPlatform/System/Paths.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

TEST(Paths, followTheEnvironment) {
    const struct {
        const char* name;
        const char* variable;
        QByteArray value; // null when unset
        QString (*path)();
        const char* expected;
    } rows[] = {
        {"data", "XDG_DATA_HOME", "/srv/data/", Paths::data, "/srv/data/Vistrel"},
        {"dataUnset", "XDG_DATA_HOME", {}, Paths::data, "/home/u/.local/share/Vistrel"},
        {"dataEmpty", "XDG_DATA_HOME", "", Paths::data, "/home/u/.local/share/Vistrel"},
        {"relativeIsIgnored", "XDG_DATA_HOME", "data", Paths::data, "/home/u/.local/share/Vistrel"},
        {"config", "XDG_CONFIG_HOME", "/c", Paths::config, "/c/Vistrel"},
        {"configUnset", "XDG_CONFIG_HOME", {}, Paths::config, "/home/u/.config/Vistrel"},
        {"configHome", "XDG_CONFIG_HOME", {}, Paths::configHome, "/home/u/.config"},
        {"cache", "XDG_CACHE_HOME", "/k", Paths::cache, "/k/Vistrel"},
        {"cacheUnset", "XDG_CACHE_HOME", {}, Paths::cache, "/home/u/.cache/Vistrel"},
    };
    for (const auto& row : rows) {
        const ScopedEnvironment home("HOME", "/home/u");
        const ScopedEnvironment variable(row.variable, row.value);
        EXPECT_EQ(row.path().toStdString(), row.expected) << row.name;
        const ScopedEnvironment homeless("HOME", QByteArray());
        EXPECT_TRUE(QDir::isAbsolutePath(row.path())) << "the account tells: " << row.name;
    }
}

TEST(Paths, theRuntimeFolderIsPrivateOrRefused) {
    const QTemporaryDir folder;
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

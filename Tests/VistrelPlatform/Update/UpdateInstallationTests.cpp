#include "VistrelPlatform/Update/UpdateInstallation.h"
#include "VistrelPlatform/Update/UpdateTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using Kind = UpdateInstallation::Kind;

UpdateVersion version(const char* text) {
    return *UpdateVersion::parse(QString::fromLatin1(text));
}

class UpdateInstallationTests : public ::testing::Test {
protected:
    UpdateInstallationTests() : home(QFileInfo(folder.path()).canonicalFilePath() + QStringLiteral("/home")) {
        writeInstalledTree(prefix(), "1.0");
    }

    QString prefix() const { return home + QStringLiteral("/vistrel"); }
    QString program() const { return prefix() + QStringLiteral("/bin/vistrel"); }
    QStringList neighbours() const {
        return QDir(home).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    /// A published archive of the given tree.
    QString pack(const std::function<void(const QString& tree)>& write) const {
        const QString tree = folder.path() + QStringLiteral("/pack/vistrel-2.0");
        write(tree);
        packedTree(tree);
        return tree + QStringLiteral(".tar.gz");
    }
    Kind kindOf(const QString& executable, const QString& appImage = {}) const {
        return UpdateInstallation::detect(executable, appImage).kind;
    }

    QTemporaryDir folder;
    QString home;
};

TEST_F(UpdateInstallationTests, aFolderOfItsOwnIsReplaceable) {
    EXPECT_EQ(UpdateInstallation::detect(program(), {}), (UpdateInstallation{Kind::privatePrefix, prefix()}));
    // Also through a link in the search path.
    const QString link = home + QStringLiteral("/link");
    QFile::link(program(), link);
    EXPECT_EQ(UpdateInstallation::detect(link, {}).path, prefix());
}

TEST_F(UpdateInstallationTests, whatIsSharedOrNotOursIsLeftAlone) {
    EXPECT_EQ(kindOf(QStringLiteral("/usr/bin/env")), Kind::managed);
    EXPECT_EQ(kindOf(QStringLiteral("/nonexistent/bin/vistrel")), Kind::managed);
    EXPECT_EQ(kindOf({}), Kind::managed);
    EXPECT_EQ(kindOf({}, QStringLiteral("/usr/bin/env")), Kind::managed);
    EXPECT_EQ(kindOf({}, home), Kind::managed);
    writeFile(prefix() + QStringLiteral("/bin/other"), "x");
    EXPECT_EQ(kindOf(program()), Kind::managed);
    QFile::remove(prefix() + QStringLiteral("/bin/other"));
    QFile::link(QStringLiteral("/etc"), prefix() + QStringLiteral("/share/.hidden"));
    EXPECT_EQ(kindOf(program()), Kind::managed);
    QFile::remove(prefix() + QStringLiteral("/share/.hidden"));
    EXPECT_EQ(kindOf(program()), Kind::privatePrefix);
    QFile::remove(prefix() + QStringLiteral("/share/vistrel/Files.txt"));
    EXPECT_EQ(kindOf(program()), Kind::managed);
}

TEST_F(UpdateInstallationTests, folderIsExchangedWhole) {
    const QString archive = pack([](const QString& tree) {
        writeInstalledTree(tree, "2.0");
        writeFile(tree + QStringLiteral("/share/vistrel/More.txt"), "more");
        writeFile(tree + QStringLiteral("/share/vistrel/Files.txt"),
                  "bin/vistrel\nshare/vistrel/Info.json\nshare/vistrel/Files.txt\nshare/vistrel/More.txt\n");
    });
    QDir(home).mkdir(QStringLiteral(".vistrel.update-abcdef")); // from an interrupted update
    const auto replaced = UpdateInstallation::detect(program(), {}).replace(archive, version("2.0"));
    ASSERT_TRUE(replaced) << replaced.error().description.toStdString();
    EXPECT_EQ(*replaced, program());
    EXPECT_TRUE(readFile(program()).contains("echo 2.0"));
    EXPECT_TRUE(QFileInfo(program()).isExecutable());
    EXPECT_EQ(neighbours(), QStringList(QStringLiteral("vistrel")));
    EXPECT_EQ(kindOf(program()), Kind::privatePrefix);
}

struct BadArchiveCase {
    const char* name;
    void (*spoil)(const QString& tree);
};

class BadArchiveTests : public UpdateInstallationTests,
                        public ::testing::WithParamInterface<BadArchiveCase> {};

TEST_P(BadArchiveTests, changesNothing) {
    const QString archive = pack([](const QString& tree) {
        writeInstalledTree(tree, "2.0");
        GetParam().spoil(tree);
    });
    if (QByteArrayView(GetParam().name) == QByteArrayView("notAnArchive"))
        writeFile(archive, "no archive");
    const auto replaced = UpdateInstallation::detect(program(), {}).replace(archive, version("2.0"));
    ASSERT_FALSE(replaced);
    EXPECT_FALSE(replaced.error().description.isEmpty());
    EXPECT_TRUE(readFile(program()).contains("echo 1.0"));
    EXPECT_EQ(neighbours(), QStringList(QStringLiteral("vistrel")));
}

INSTANTIATE_TEST_SUITE_P(
    Archives, BadArchiveTests,
    ::testing::Values(
        BadArchiveCase{"notAnArchive", [](const QString&) {}},
        BadArchiveCase{"anOlderVersionThanPromised",
                       [](const QString& tree) { writeInstalledTree(tree, "1.5"); }},
        BadArchiveCase{
            "noInformation",
            [](const QString& tree) { QFile::remove(tree + QStringLiteral("/share/vistrel/Info.json")); }},
        BadArchiveCase{"noProgram",
                       [](const QString& tree) { QFile::remove(tree + QStringLiteral("/bin/vistrel")); }},
        BadArchiveCase{"programNotExecutable",
                       [](const QString& tree) {
                           QFile::setPermissions(tree + QStringLiteral("/bin/vistrel"), QFile::ReadOwner);
                       }},
        BadArchiveCase{"fileNotInItsList",
                       [](const QString& tree) { writeFile(tree + QStringLiteral("/bin/stowaway"), "x"); }}),
    [](const auto& entry) { return std::string(entry.param.name); });

class AppImageTests : public UpdateInstallationTests {
protected:
    /// A program that unpacks its information file the way an AppImage does.
    static QByteArray image(const QByteArray& held) {
        return "#!/bin/sh\n[ \"$1\" = --appimage-extract ] || exit 1\n"
               "mkdir -p \"squashfs-root/${2%/*}\"\n"
               "echo '{\"CFBundleShortVersionString\": \"" +
               held + "\"}' > \"squashfs-root/$2\"\n";
    }
    QString file() const { return home + QStringLiteral("/Vistrel.AppImage"); }
};

TEST_F(AppImageTests, isReplacedByOneThatHoldsTheVersion) {
    writeFile(file(), image("1.0"), true);
    const QString archive = folder.filePath(QStringLiteral("download"));
    const UpdateInstallation installation =
        UpdateInstallation::detect(QStringLiteral("/tmp/mount/x"), file());
    ASSERT_EQ(installation.kind, Kind::appImage);

    writeFile(archive, image("1.5"));
    EXPECT_FALSE(installation.replace(archive, version("2.0")));
    writeFile(archive, "#!/bin/sh\nexit 0\n");
    EXPECT_FALSE(installation.replace(archive, version("2.0")));
    EXPECT_EQ(readFile(file()), image("1.0"));

    writeFile(archive, image("2.0.0"));
    const auto replaced = installation.replace(archive, version("2.0"));
    ASSERT_TRUE(replaced) << replaced.error().description.toStdString();
    EXPECT_EQ(*replaced, file());
    EXPECT_EQ(readFile(file()), image("2.0.0"));
    EXPECT_TRUE(QFileInfo(file()).isExecutable());
    EXPECT_EQ(neighbours(), (QStringList{QStringLiteral("vistrel"), QStringLiteral("Vistrel.AppImage")}));
}

} // namespace

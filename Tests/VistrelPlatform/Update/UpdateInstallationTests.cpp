#include "VistrelPlatform/Update/UpdateInstallation.h"
#include "VistrelPlatform/Update/UpdateTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using Kind = UpdateInstallation::Kind;

namespace {

class UpdateInstallationTests : public ::testing::Test {
protected:
    UpdateInstallationTests() { writeInstalledTree(prefix, "1.0"); }

    Kind kindOf(const QString& executable, const QString& appImage = {}) const {
        return UpdateInstallation::detect(executable, appImage).kind;
    }

    QTemporaryDir folder;
    const QString home = QFileInfo(folder.path()).canonicalFilePath() + u"/home"_s;
    const QString prefix = home + u"/vistrel"_s;
    const QString program = prefix + u"/bin/vistrel"_s;
    const UpdateVersion newVersion = *UpdateVersion::parse(u"2.0"_s);
};

} // namespace

TEST_F(UpdateInstallationTests, onlyWhatIsOursAloneIsReplaceable) {
    EXPECT_EQ(UpdateInstallation::detect(program, {}), (UpdateInstallation{Kind::privatePrefix, prefix}));
    // Also through a link in the search path.
    QFile::link(program, home + u"/link"_s);
    EXPECT_EQ(UpdateInstallation::detect(home + u"/link"_s, {}).path, prefix);

    EXPECT_EQ(kindOf(u"/usr/bin/env"_s), Kind::managed);
    EXPECT_EQ(kindOf(u"/nonexistent/bin/vistrel"_s), Kind::managed);
    EXPECT_EQ(kindOf({}, u"/usr/bin/env"_s), Kind::managed);
    EXPECT_EQ(kindOf({}, home), Kind::managed);
    writeFile(prefix + u"/bin/other"_s, "x");
    EXPECT_EQ(kindOf(program), Kind::managed);
    QFile::remove(prefix + u"/bin/other"_s);
    QFile::link(u"/etc"_s, prefix + u"/share/.hidden"_s);
    EXPECT_EQ(kindOf(program), Kind::managed);
    QFile::remove(prefix + u"/share/.hidden"_s);
    EXPECT_EQ(kindOf(program), Kind::privatePrefix);
    QFile::remove(prefix + u"/share/vistrel/Files.txt"_s);
    EXPECT_EQ(kindOf(program), Kind::managed);
}

TEST_F(UpdateInstallationTests, aFolderIsExchangedWholeOrNotAtAll) {
    const struct {
        const char* name;
        std::function<void(const QString& tree)> change;
    } spoilt[] = {
        {"anOlderVersionThanPromised", [](const QString& tree) { writeInstalledTree(tree, "1.5"); }},
        {"noInformation", [](const QString& tree) { QFile::remove(tree + u"/share/vistrel/Info.json"_s); }},
        {"noProgram", [](const QString& tree) { QFile::remove(tree + u"/bin/vistrel"_s); }},
        {"programNotExecutable",
         [](const QString& tree) { QFile::setPermissions(tree + u"/bin/vistrel"_s, QFile::ReadOwner); }},
        {"fileNotInItsList", [](const QString& tree) { writeFile(tree + u"/bin/stowaway"_s, "x"); }},
    };
    const QString tree = folder.filePath(u"pack/vistrel-2.0"_s);
    const UpdateInstallation installation = UpdateInstallation::detect(program, {});
    const auto isRefused = [&](const QString& archive) {
        const auto replaced = installation.replace(archive, newVersion);
        return !replaced && !replaced.error().description.isEmpty() &&
               readFile(program).contains("echo 1.0") && entriesOf(home) == QStringList(u"vistrel"_s);
    };
    for (const auto& row : spoilt) {
        QDir(tree).removeRecursively();
        writeInstalledTree(tree, "2.0");
        row.change(tree);
        EXPECT_TRUE(isRefused(packTree(tree))) << row.name;
    }
    writeFile(folder.filePath(u"text"_s), "no archive");
    EXPECT_TRUE(isRefused(folder.filePath(u"text"_s)));

    QDir(tree).removeRecursively();
    writeInstalledTree(tree, "2.0");
    writeFile(tree + u"/share/vistrel/More.txt"_s, "more");
    writeFile(tree + u"/share/vistrel/Files.txt"_s,
              "bin/vistrel\nshare/vistrel/Info.json\nshare/vistrel/Files.txt\nshare/vistrel/More.txt\n");
    QDir(home).mkdir(u".vistrel.update-abcdef"_s); // from an interrupted update
    const auto replaced = installation.replace(packTree(tree), newVersion);
    ASSERT_TRUE(replaced) << replaced.error().description.toStdString();
    EXPECT_EQ(*replaced, program);
    EXPECT_TRUE(readFile(program).contains("echo 2.0") && QFileInfo(program).isExecutable());
    EXPECT_EQ(entriesOf(home), QStringList(u"vistrel"_s));
    EXPECT_EQ(kindOf(program), Kind::privatePrefix);
}

TEST_F(UpdateInstallationTests, anAppImageIsReplacedByOneThatHoldsTheVersion) {
    // A program that unpacks its information file the way an AppImage does.
    const auto image = [](const QByteArray& held) {
        return "#!/bin/sh\n[ \"$1\" = --appimage-extract ] || exit 1\nmkdir -p \"squashfs-root/${2%/*}\"\n"
               "echo '{\"CFBundleShortVersionString\": \"" +
               held + "\"}' > \"squashfs-root/$2\"\n";
    };
    const QString file = home + u"/Vistrel.AppImage"_s;
    const QString archive = folder.filePath(u"download"_s);
    writeFile(file, image("1.0"), true);
    const UpdateInstallation installation = UpdateInstallation::detect(u"/tmp/mount/x"_s, file);
    ASSERT_EQ(installation.kind, Kind::appImage);
    for (const QByteArray& wrong : {image("1.5"), QByteArray("#!/bin/sh\nexit 0\n")}) {
        writeFile(archive, wrong);
        EXPECT_FALSE(installation.replace(archive, newVersion));
        EXPECT_EQ(readFile(file), image("1.0"));
    }
    writeFile(archive, image("2.0.0"));
    const auto replaced = installation.replace(archive, newVersion);
    ASSERT_TRUE(replaced) << replaced.error().description.toStdString();
    EXPECT_EQ(*replaced, file);
    EXPECT_EQ(readFile(file), image("2.0.0"));
    EXPECT_TRUE(QFileInfo(file).isExecutable());
    EXPECT_EQ(entriesOf(home), (QStringList{u"vistrel"_s, u"Vistrel.AppImage"_s}));
}

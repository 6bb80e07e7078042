#include "Support/ReadOnlyFolder.h"
#include "Support/TestFiles.h"
#include "VistrelPlatform/System/FileUserDefaults.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

const QString scale = u"editorPanelScalePercentV2"_s;

class FileUserDefaultsTests : public ::testing::Test {
protected:
    QJsonObject stored() const { return QJsonDocument::fromJson(readFile(path)).object(); }
    /// The contents of the unreadable files that were kept.
    QByteArrayList keptAside() const {
        const QDir place = QFileInfo(path).dir();
        QByteArrayList contents;
        for (const QString& name : place.entryList({u"defaults.json.unreadable-*"_s}, QDir::Files))
            contents << readFile(place.filePath(name));
        return contents;
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(u"Vistrel/defaults.json"_s);
};

} // namespace

TEST_F(FileUserDefaultsTests, whatIsNotUnderstoodSurvivesARewrite) {
    writeFile(path, R"({"": 1, "a/b": [1, {"deep": null}], "/odd//": "x", "large": 9007199254740993,
              "nothing": null, "SCALE": 1, "scale": 2, "naïve": {"data": 5}, "long": 1e300})");
    QJsonObject expected = stored();
    FileUserDefaults(path).setNumber(scale, 80);
    expected.insert(scale, 80);
    EXPECT_EQ(stored(), expected) << readFile(path).constData();
    EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST_F(FileUserDefaultsTests, anUnreadableFileIsKeptAsideAndNeverReplaced) {
    const std::pair<const char*, QByteArray> rows[] = {
        {"cutOff", "{\"a\": 1, \"b\""},       {"notAnObject", "[1, 2]"},
        {"notJSON", "scale=100\n"},           {"nul", QByteArray("{\"a\": 1}\0", 9)},
        {"notUTF8", "{\"a\": \"\xff\xfe\"}"}, {"twoObjects", "{}{}"},
    };
    int kept = 0;
    for (const auto& [name, content] : rows) {
        SCOPED_TRACE(name);
        writeFile(path, content);
        {
            FileUserDefaults defaults(path);
            EXPECT_FALSE(defaults.has(u"a"_s));
            defaults.setNumber(scale, 90);
        }
        EXPECT_EQ(FileUserDefaults(path).number(scale), 90);
        EXPECT_EQ(keptAside().size(), ++kept) << "an earlier one was lost";
        EXPECT_TRUE(keptAside().contains(content));
    }
}

TEST_F(FileUserDefaultsTests, whatOthersWriteWhileTheProgramRunsIsKept) {
    FileUserDefaults defaults(path);
    defaults.setNumber(scale, 90);
    ASSERT_TRUE(defaults.synchronize());
    writeFile(path, R"({"editorPanelScalePercentV2": 70, "theirs": true})");
    defaults.setString(u"ours"_s, u"x"_s);
    ASSERT_TRUE(defaults.synchronize());
    EXPECT_EQ(defaults.boolean(u"theirs"_s), true);
    EXPECT_EQ(stored()[scale], 70);

    writeFile(path, "{ spoiled by hand");
    defaults.setBoolean(u"other"_s, true);
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(keptAside(), QByteArrayList{"{ spoiled by hand"});
    EXPECT_EQ(stored()[u"other"], true);
}

TEST_F(FileUserDefaultsTests, whatIsStoredAlreadyIsNotWrittenAgain) {
    const QByteArray written = R"({"editorPanelScalePercentV2":70})";
    writeFile(path, written);
    FileUserDefaults defaults(path);
    defaults.setNumber(scale, 70);
    defaults.remove(u"never set"_s);
    ASSERT_TRUE(defaults.synchronize());
    EXPECT_EQ(readFile(path), written);
}

TEST_F(FileUserDefaultsTests, manyChangesInARowAreWrittenOnceAfterThem) {
    FileUserDefaults defaults(path);
    for (int step = 50; step <= 80; ++step) {
        defaults.setNumber(scale, step);
        QCoreApplication::processEvents();
        ASSERT_FALSE(QFile::exists(path)) << step;
    }
    while (!QFile::exists(path))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    EXPECT_EQ(stored()[scale], 80);
}

TEST_F(FileUserDefaultsTests, aFolderThatCannotBeWrittenLeavesTheValuesInTheProcess) {
    writeFile(path, "{\"a\": 1}");
    FileUserDefaults defaults(path);
    const ReadOnlyFolder readOnly(folder.path(), u"Vistrel"_s);
    ASSERT_TRUE(readOnly.inForce());
    defaults.setNumber(scale, 90);
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_EQ(defaults.number(scale), 90);
    EXPECT_EQ(readFile(path), "{\"a\": 1}");
}

TEST_F(FileUserDefaultsTests, otherThreadsReadWhileTheMainThreadWrites) {
    FileUserDefaults defaults(path);
    defaults.setBoolean(u"switch"_s, true);
    std::atomic<int> misses = 0;
    {
        const std::jthread reader([&](const std::stop_token& stop) {
            while (!stop.stop_requested())
                misses += !defaults.boolean(u"switch"_s);
        });
        for (int step = 0; step < 200; ++step) {
            defaults.setBoolean(u"switch"_s, step % 2 == 0);
            defaults.setNumber(scale, step);
            if (step % 20 == 0)
                QCoreApplication::sendPostedEvents();
        }
    }
    EXPECT_EQ(misses, 0);
}

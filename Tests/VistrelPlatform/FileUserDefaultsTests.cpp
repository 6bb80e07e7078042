#include "Support/ReadOnlyFolder.h"
#include "VistrelPlatform/System/AtomicFile.h"
#include "VistrelPlatform/System/FileUserDefaults.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {

const QString scale = QStringLiteral("editorPanelScalePercentV2");

class FileUserDefaultsTests : public ::testing::Test {
protected:
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Vistrel/defaults.json"));

    QByteArray content() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const QByteArray& bytes) const {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
    QStringList keptAside() const {
        return QFileInfo(path).dir().entryList({QStringLiteral("defaults.json.unreadable-*")}, QDir::Files);
    }
};

TEST_F(FileUserDefaultsTests, aFreshStoreIsEmptyAndWritesNothing) {
    {
        FileUserDefaults defaults(path);
        EXPECT_FALSE(defaults.has(scale));
        EXPECT_EQ(defaults.number(scale), std::nullopt);
    }
    EXPECT_FALSE(QFileInfo::exists(path));
}

TEST_F(FileUserDefaultsTests, everyTypeComesBackInTheNextRun) {
    const QByteArray binary("\x00\xff[{\"\n", 6);
    {
        FileUserDefaults defaults(path);
        defaults.setNumber(QStringLiteral("number"), 62.5);
        defaults.setBoolean(QStringLiteral("boolean"), false);
        defaults.setString(QStringLiteral("text"), QStringLiteral("⌘⇧9 \"ü\""));
        defaults.setData(QStringLiteral("binary"), binary);
        defaults.setString(QStringLiteral("gone"), QStringLiteral("x"));
        defaults.remove(QStringLiteral("gone"));
        EXPECT_EQ(defaults.number(QStringLiteral("number")), 62.5) << "readable before it is written";
    }
    FileUserDefaults defaults(path);
    EXPECT_EQ(defaults.number(QStringLiteral("number")), 62.5);
    EXPECT_EQ(defaults.boolean(QStringLiteral("boolean")), false);
    EXPECT_EQ(defaults.string(QStringLiteral("text")), QStringLiteral("⌘⇧9 \"ü\""));
    EXPECT_EQ(defaults.data(QStringLiteral("binary")), binary);
    EXPECT_FALSE(defaults.has(QStringLiteral("gone")));
    EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST_F(FileUserDefaultsTests, aChangeIsWrittenWhenTheEventLoopComesRound) {
    FileUserDefaults defaults(path);
    defaults.setNumber(scale, 120);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(QJsonDocument::fromJson(content()).object().value(scale).toInt(), 120);
}

struct TypeCase {
    const char* name;
    const char* json;
    bool number, boolean, string, data, has;
};
const TypeCase typeCases[] = {
    {"wholeNumber", "100", true, false, false, false, true},
    {"fraction", "0.5", true, false, false, false, true},
    {"boolean", "true", false, true, false, false, true},
    {"text", "\"1\"", false, false, true, false, true},
    {"binary", R"({"data": "AAEC"})", false, false, false, true, true},
    {"emptyBinary", R"({"data": ""})", false, false, false, true, true},
    {"binaryThatIsNoBase64", R"({"data": "A*"})", false, false, false, false, true},
    {"otherObject", R"({"x": 1})", false, false, false, false, true},
    {"list", "[1]", false, false, false, false, true},
    {"null", "null", false, false, false, false, false},
};

TEST_F(FileUserDefaultsTests, aValueIsReadAsItsOwnTypeOnly) {
    for (const TypeCase& row : typeCases) {
        SCOPED_TRACE(row.name);
        const QString key = QString::fromLatin1(row.name);
        const QString file = folder.filePath(key);
        ASSERT_TRUE(writeAtomically(file, "{\"" + QByteArray(row.name) + "\": " + row.json + "}"));
        FileUserDefaults defaults(file);
        EXPECT_EQ(defaults.number(key).has_value(), row.number);
        EXPECT_EQ(defaults.boolean(key).has_value(), row.boolean);
        EXPECT_EQ(defaults.string(key).has_value(), row.string);
        EXPECT_EQ(defaults.data(key).has_value(), row.data);
        EXPECT_EQ(defaults.has(key), row.has);
    }
}

TEST_F(FileUserDefaultsTests, whatIsNotUnderstoodSurvivesARewrite) {
    write(R"({"": 1, "a/b": [1, {"deep": null}], "/odd//": "x", "large": 9007199254740993,
              "nothing": null, "SCALE": 1, "scale": 2, "naïve": {"data": 5}, "long": 1e300})");
    QJsonObject expected = QJsonDocument::fromJson(content()).object();
    {
        FileUserDefaults defaults(path);
        defaults.setNumber(scale, 80);
    }
    expected.insert(scale, 80);
    EXPECT_EQ(QJsonDocument::fromJson(content()).object(), expected) << content().constData();
}

struct UnreadableCase {
    const char* name;
    QByteArray content;
};
const UnreadableCase unreadableCases[] = {
    {"cutOff", "{\"a\": 1, \"b\""},       {"notAnObject", "[1, 2]"},
    {"notJSON", "scale=100\n"},           {"nul", QByteArray("{\"a\": 1}\0", 9)},
    {"notUTF8", "{\"a\": \"\xff\xfe\"}"}, {"twoObjects", "{}{}"},
};

TEST_F(FileUserDefaultsTests, anUnreadableFileIsKeptAsideAndNeverReplaced) {
    int kept = 0;
    for (const UnreadableCase& row : unreadableCases) {
        SCOPED_TRACE(row.name);
        write(row.content);
        {
            FileUserDefaults defaults(path);
            EXPECT_FALSE(defaults.has(QStringLiteral("a")));
            defaults.setNumber(scale, 90);
        }
        EXPECT_EQ(FileUserDefaults(path).number(scale), 90);
        const QStringList files = keptAside();
        EXPECT_EQ(files.size(), ++kept) << "an earlier one was lost";
        const bool found = std::any_of(files.begin(), files.end(), [&](const QString& name) {
            QFile file(QFileInfo(path).dir().filePath(name));
            return file.open(QIODevice::ReadOnly) && file.readAll() == row.content;
        });
        EXPECT_TRUE(found);
    }
}

TEST_F(FileUserDefaultsTests, aFileSpoiledWhileTheProgramRunsIsKeptToo) {
    FileUserDefaults defaults(path);
    defaults.setNumber(scale, 90);
    ASSERT_TRUE(defaults.synchronize());
    write("{ spoiled by hand");
    defaults.setBoolean(QStringLiteral("other"), true);
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(keptAside().size(), 1);
    EXPECT_EQ(FileUserDefaults(path).boolean(QStringLiteral("other")), true);
}

TEST_F(FileUserDefaultsTests, anotherProgramsChangeIsNotUndone) {
    FileUserDefaults defaults(path);
    defaults.setNumber(scale, 90);
    ASSERT_TRUE(defaults.synchronize());
    write(R"({"editorPanelScalePercentV2": 70, "theirs": true})");
    defaults.setString(QStringLiteral("ours"), QStringLiteral("x"));
    ASSERT_TRUE(defaults.synchronize());
    EXPECT_EQ(defaults.boolean(QStringLiteral("theirs")), true);
    EXPECT_EQ(FileUserDefaults(path).number(scale), 70);
}

TEST_F(FileUserDefaultsTests, aFolderThatCannotBeWrittenLeavesTheValuesInTheProcess) {
    write("{\"a\": 1}");
    FileUserDefaults defaults(path);
    const ReadOnlyFolder readOnly(folder.path(), QStringLiteral("Vistrel"));
    ASSERT_TRUE(readOnly.inForce());
    defaults.setNumber(scale, 90);
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_EQ(defaults.number(scale), 90);
    EXPECT_EQ(content(), QByteArray("{\"a\": 1}"));
}

TEST_F(FileUserDefaultsTests, otherThreadsReadWhileTheMainThreadWrites) {
    FileUserDefaults defaults(path);
    defaults.setBoolean(QStringLiteral("switch"), true);
    std::atomic<bool> stop = false;
    std::atomic<int> misses = 0;
    std::thread reader([&] {
        while (!stop) {
            if (!defaults.boolean(QStringLiteral("switch")))
                ++misses;
        }
    });
    for (int step = 0; step < 200; ++step) {
        defaults.setBoolean(QStringLiteral("switch"), step % 2 == 0);
        defaults.setNumber(scale, step);
        if (step % 20 == 0)
            QCoreApplication::sendPostedEvents();
    }
    stop = true;
    reader.join();
    EXPECT_EQ(misses, 0);
}

} // namespace

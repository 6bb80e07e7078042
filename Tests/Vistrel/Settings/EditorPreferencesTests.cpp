#include "Settings/EditorPreferences.h"
#include "VistrelPlatform/System/AtomicFile.h"
#include "VistrelPlatform/System/FileUserDefaults.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct StoredCase {
    const char* name;
    const char* stored;
    double scale;
    bool cancels;
    bool reduces;
    ScreenshotSaveFormat format;
    /// What is stored after construction; null when nothing may have changed.
    const char* after;
};
constexpr auto png = ScreenshotSaveFormat::png;
constexpr auto jpg = ScreenshotSaveFormat::jpg;
const StoredCase storedCases[] = {
    {"fresh", "{}", 100, true, true, png, nullptr},
    {"everything",
     R"({"editorPanelScalePercentV2": 75.5, "doubleClickOutsideToCancel": false,
         "downscaleRetinaScreenshots": false, "screenshotSaveFormat": "jpg"})",
     75.5, false, false, jpg, nullptr},
    {"largeScaleIsReadClampedOnly", R"({"editorPanelScalePercentV2": 200})", 150, true, true, png, nullptr},
    {"formerScale", R"({"editorPanelScalePercent": 80})", 100, true, true, png,
     R"({"editorPanelScalePercent": 80, "editorPanelScalePercentV2": 100})"},
    {"newScaleWins", R"({"editorPanelScalePercent": 40, "editorPanelScalePercentV2": 60})", 60, true, true,
     png, nullptr},
    {"formerJPG", R"({"screenshotSaveFormat": "jpeg"})", 100, true, true, jpg,
     R"({"screenshotSaveFormat": "jpg"})"},
    {"switchesOfOtherTypes", R"({"doubleClickOutsideToCancel": 0, "downscaleRetinaScreenshots": "YES"})", 100,
     false, true, png, nullptr},
    {"switchesThatSayNothing", R"({"doubleClickOutsideToCancel": [], "downscaleRetinaScreenshots": "no"})",
     100, false, false, png, nullptr},
};

QJsonObject stored(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

TEST(EditorPreferencesTests, readsAndMigratesWhatIsStored) {
    QTemporaryDir folder;
    for (const StoredCase& row : storedCases) {
        SCOPED_TRACE(row.name);
        const QString path = folder.filePath(QString::fromLatin1(row.name));
        ASSERT_TRUE(writeAtomically(path, row.stored));
        {
            FileUserDefaults defaults(path);
            const EditorPreferences preferences(defaults);
            EXPECT_EQ(preferences.scalePercent(), row.scale);
            EXPECT_EQ(preferences.doubleClickOutsideToCancel(), row.cancels);
            EXPECT_EQ(preferences.downscaleRetinaScreenshots(), row.reduces);
            EXPECT_EQ(preferences.saveFormat(), row.format);
        }
        const char* after = row.after == nullptr ? row.stored : row.after;
        EXPECT_EQ(stored(path), QJsonDocument::fromJson(after).object());
    }
}

} // namespace

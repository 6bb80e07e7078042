#include "Settings/EditorPreferences.h"
#include "Support/TestFiles.h"
#include "VistrelPlatform/System/FileUserDefaults.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

constexpr auto png = ScreenshotSaveFormat::png;
constexpr auto jpg = ScreenshotSaveFormat::jpg;

/// What is stored, the four preferences, and what is stored after construction; null when nothing may change.
const std::tuple<const char*, const char*, double, bool, bool, ScreenshotSaveFormat, const char*> rows[] = {
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

TEST(EditorPreferencesTests, readsAndMigratesWhatIsStored) {
    const QTemporaryDir folder;
    for (const auto& [name, stored, scale, cancels, reduces, format, after] : rows) {
        SCOPED_TRACE(name);
        const QString path = folder.filePath(QString::fromLatin1(name));
        writeFile(path, stored);
        {
            FileUserDefaults defaults(path);
            const EditorPreferences preferences(defaults);
            EXPECT_EQ(preferences.scalePercent(), scale);
            EXPECT_EQ(preferences.doubleClickOutsideToCancel(), cancels);
            EXPECT_EQ(preferences.downscaleRetinaScreenshots(), reduces);
            EXPECT_EQ(preferences.saveFormat(), format);
        }
        EXPECT_EQ(QJsonDocument::fromJson(readFile(path)),
                  QJsonDocument::fromJson(after == nullptr ? stored : after));
    }
}

} // namespace

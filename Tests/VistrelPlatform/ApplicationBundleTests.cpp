#include "Support/TestFiles.h"
#include "VistrelPlatform/System/ApplicationBundle.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(ApplicationBundle, readsWhatStandsBesideTheExecutable) {
    const struct {
        const char* name;
        const char* information; // null when there is no file
        bool installed;
        const char* version; // null when absent
    } rows[] = {
        {"buildTree", nullptr, false, nullptr},
        {"installed", R"({"CFBundleShortVersionString": "1.2.3"})", true, "1.2.3"},
        {"installedWithoutTheKey", R"({"SUFeedURL": "https://example.invalid"})", true, nullptr},
        {"emptyCountsAsAbsent", R"({"CFBundleShortVersionString": ""})", true, nullptr},
        {"noText", R"({"CFBundleShortVersionString": 1.2})", true, nullptr},
        {"spoiled", "{", false, nullptr},
        {"notAnObject", "[]", false, nullptr},
    };
    for (const auto& row : rows) {
        const QTemporaryDir root;
        if (row.information)
            writeFile(root.filePath(QStringLiteral("share/vistrel/Info.json")), row.information);
        const ApplicationBundle bundle(root.filePath(QStringLiteral("bin/vistrel")));
        EXPECT_EQ(bundle.isInstalled(), row.installed) << row.name;
        EXPECT_EQ(bundle.string(ApplicationBundle::shortVersionKey),
                  row.version ? std::optional(QString::fromLatin1(row.version)) : std::nullopt)
            << row.name;
    }
}

#include "VistrelPlatform/System/ApplicationBundle.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct BundleCase {
    const char* name;
    const char* information; // null when there is no file
    bool installed;
    const char* version; // null when absent
};
const BundleCase bundleCases[] = {
    {"buildTree", nullptr, false, nullptr},
    {"installed", R"({"CFBundleShortVersionString": "1.2.3"})", true, "1.2.3"},
    {"installedWithoutTheKey", R"({"SUFeedURL": "https://example.invalid"})", true, nullptr},
    {"emptyCountsAsAbsent", R"({"CFBundleShortVersionString": ""})", true, nullptr},
    {"noText", R"({"CFBundleShortVersionString": 1.2})", true, nullptr},
    {"spoiled", "{", false, nullptr},
    {"notAnObject", "[]", false, nullptr},
};

TEST(ApplicationBundleTests, readsWhatStandsBesideTheExecutable) {
    for (const BundleCase& row : bundleCases) {
        SCOPED_TRACE(row.name);
        QTemporaryDir root;
        ASSERT_TRUE(QDir(root.path()).mkpath(QStringLiteral("share/vistrel")));
        if (row.information != nullptr) {
            QFile file(root.filePath(QStringLiteral("share/vistrel/Info.json")));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(row.information);
        }
        const ApplicationBundle bundle(root.filePath(QStringLiteral("bin/vistrel")));
        EXPECT_EQ(bundle.isInstalled(), row.installed);
        EXPECT_EQ(bundle.string(ApplicationBundle::shortVersionKey),
                  row.version == nullptr ? std::nullopt : std::optional(QString::fromLatin1(row.version)));
    }
}

} // namespace

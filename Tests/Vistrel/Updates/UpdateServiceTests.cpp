#include "Support/LinkedNetwork.h"
#include "Updates/UpdateService.h"
#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/Update/TestSigner.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(UpdateServiceTests, canCheckOnlyWhenThereIsSomethingToCheck) {
    using Build = UpdaterConfiguration;
    const QTemporaryDir folder;
    FileUserDefaults defaults(folder.filePath(u"defaults.json"_s));
    const std::tuple<const char*, void (*)(Build&), bool, bool> rows[] = {
        {"complete", [](Build&) {}, true, true},
        {"bareExecutable", [](Build& build) { build.installed = false; }, false, false},
        {"noKey", [](Build& build) { build.publicKey.clear(); }, false, false},
        {"unusableKey", [](Build& build) { build.publicKey = u"AA"_s; }, true, false},
        {"noFeed", [](Build& build) { build.feedAddress.clear(); }, true, false},
    };
    for (const auto& [name, change, hasUpdater, canCheck] : rows) {
        SCOPED_TRACE(name);
        Build build;
        build.installed = true;
        build.feedAddress = u"https://localhost/feed"_s;
        build.publicKey = TestSigner().publicKey();
        build.version = u"1.0"_s;
        build.downloadFolder = folder.filePath(u"Update"_s);
        build.network = linkedNetwork;
        change(build);
        UpdateService service(build, defaults);
        EXPECT_FALSE(service.canCheck());
        service.start();
        EXPECT_EQ(service.controller() != nullptr, hasUpdater);
        EXPECT_EQ(service.canCheck(), canCheck);
    }
}

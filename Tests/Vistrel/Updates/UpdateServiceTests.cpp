#include "Support/LinkedNetwork.h"
#include "Updates/UpdateProbe.h"
#include "Updates/UpdateService.h"
#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/Update/TestServer.h"
#include "VistrelPlatform/Update/UpdateTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace std::chrono_literals;

namespace {

class UpdateServiceTests : public ::testing::Test {
protected:
    UpdateServiceTests() : defaults(folder.filePath(u"defaults.json"_s)) {
        configuration.installed = true;
        configuration.feedAddress = server.address().toString();
        configuration.publicKey = signer.publicKey();
        configuration.version = u"1.0"_s;
        configuration.downloadFolder = folder.filePath(u"Update"_s);
        configuration.network = linkedNetwork;
        configuration.testAuthorities = server.authorities();
    }

    QTemporaryDir folder;
    TestServer server;
    TestSigner signer;
    FileUserDefaults defaults;
    UpdaterConfiguration configuration;
};

TEST_F(UpdateServiceTests, canCheckOnlyWhenThereIsSomethingToCheck) {
    struct BuildCase {
        const char* name;
        void (*change)(UpdaterConfiguration&);
        bool hasUpdater, canCheck;
    };
    using Build = UpdaterConfiguration;
    for (const BuildCase& row :
         {BuildCase{"complete", [](Build&) {}, true, true},
          {"bareExecutable", [](Build& build) { build.installed = false; }, false, false},
          {"noKey", [](Build& build) { build.publicKey.clear(); }, false, false},
          {"unusableKey", [](Build& build) { build.publicKey = u"AA"_s; }, true, false},
          {"noFeed", [](Build& build) { build.feedAddress.clear(); }, true, false}}) {
        SCOPED_TRACE(row.name);
        Build build = configuration;
        row.change(build);
        UpdateService service(build, defaults);
        EXPECT_FALSE(service.canCheck());
        service.start();
        EXPECT_EQ(service.controller() != nullptr, row.hasUpdater);
        EXPECT_EQ(service.canCheck(), row.canCheck);
    }
}

TEST_F(UpdateServiceTests, theProbeDescribesFailuresWithDomainAndCode) {
    QString error;
    const auto probe = [&](const UpdaterConfiguration& build) {
        UpdateProbe::Options options;
        options.deadline = 1h;
        options.print = [](const QString& line) { ADD_FAILURE() << line.toStdString(); };
        options.printError = [&](const QString& line) { error = line; };
        EXPECT_EQ(UpdateProbe(build, defaults, options).run(), 1);
        return error.toStdString();
    };
    server.serve(u"/feed"_s, TestServer::whole("", "500 Broken"));
    EXPECT_EQ(
        probe(configuration).find("Update check failed: Error Domain=SUSparkleErrorDomain Code=1002 \""), 0U)
        << error.toStdString();
    EXPECT_EQ(probe({}),
              "Update check failed: Error Domain=SUSparkleErrorDomain Code=1 \"This build of Vistrel "
              "has no update feed.\"");
}

} // namespace

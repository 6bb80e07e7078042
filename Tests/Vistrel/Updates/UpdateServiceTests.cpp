#include "Updates/UpdateProbe.h"
#include "Updates/UpdateService.h"
#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/Update/TestServer.h"
#include "VistrelPlatform/Update/UpdateTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

class UpdateServiceTests : public ::testing::Test {
protected:
    UpdateServiceTests() : defaults(folder.filePath(QStringLiteral("defaults.json"))) {
        configuration.installed = true;
        configuration.feedAddress = server.address().toString();
        configuration.publicKey = signer.publicKey();
        configuration.version = QStringLiteral("1.0");
        configuration.downloadFolder = folder.filePath(QStringLiteral("Update"));
        configuration.testAuthorities = server.authorities();
    }

    QTemporaryDir folder;
    TestServer server;
    TestSigner signer;
    FileUserDefaults defaults;
    UpdaterConfiguration configuration;
};

TEST_F(UpdateServiceTests, canCheckOnlyWhenThereIsSomethingToCheck) {
    UpdaterConfiguration bare = configuration;
    bare.installed = false;
    UpdaterConfiguration keyless = configuration;
    keyless.publicKey.clear();
    UpdaterConfiguration unusable = configuration;
    unusable.publicKey = QStringLiteral("AA");
    UpdaterConfiguration feedless = configuration;
    feedless.feedAddress.clear();
    struct BuildCase {
        const char* name;
        const UpdaterConfiguration& build;
        bool hasUpdater, canCheck;
    };
    for (const BuildCase& row : {BuildCase{"complete", configuration, true, true},
                                 {"bareExecutable", bare, false, false},
                                 {"noKey", keyless, false, false},
                                 {"unusableKey", unusable, true, false},
                                 {"noFeed", feedless, true, false}}) {
        SCOPED_TRACE(row.name);
        UpdateService service(row.build, defaults);
        EXPECT_FALSE(service.canCheck());
        service.start();
        EXPECT_EQ(service.controller() != nullptr, row.hasUpdater);
        EXPECT_EQ(service.canCheck(), row.canCheck);
        bool activated = false;
        service.onActivate = [&] { activated = true; };
        service.checkForUpdates();
        EXPECT_EQ(activated, row.canCheck);
    }
}

TEST_F(UpdateServiceTests, theToggleIsKept) {
    UpdateService service(configuration, defaults);
    service.start();
    EXPECT_TRUE(service.automaticallyChecks());
    service.setAutomaticallyChecks(false);
    EXPECT_FALSE(service.controller()->automaticallyChecksForUpdates());
    UpdateService next(configuration, defaults);
    next.start();
    EXPECT_FALSE(next.automaticallyChecks());
}

TEST_F(UpdateServiceTests, cannotCheckWhileAFeedIsAwaited) {
    server.serve(QStringLiteral("/feed"), TestServer::silence());
    UpdateService service(configuration, defaults);
    service.start();
    QStringList values;
    QObject::connect(&service, &UpdateService::canCheckChanged, &service,
                     [&] { values << (service.canCheck() ? QStringLiteral("yes") : QStringLiteral("no")); });
    service.checkForUpdates();
    EXPECT_EQ(values.last(), QStringLiteral("no"));
    EXPECT_EQ(service.updateHost(), QStringLiteral("127.0.0.1"));
}

class UpdateProbeTests : public UpdateServiceTests {
protected:
    int run() {
        UpdateProbe::Options options;
        options.deadline = 1h;
        options.print = [this](const QString& line) { lines << QStringLiteral("out: ") + line; };
        options.printError = [this](const QString& line) { lines << QStringLiteral("err: ") + line; };
        return UpdateProbe(configuration, defaults, options).run();
    }

    QStringList lines;
};

TEST_F(UpdateProbeTests, describesFailuresWithDomainAndCode) {
    server.serve(QStringLiteral("/feed"), TestServer::whole("<rss/", "200 OK"));
    EXPECT_EQ(run(), 1);
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines.first().startsWith(
        QStringLiteral("err: Update check failed: Error Domain=SUSparkleErrorDomain Code=1000 \"")))
        << lines.first().toStdString();
    server.serve(QStringLiteral("/feed"), TestServer::whole("", "500 Broken"));
    EXPECT_EQ(run(), 1);
    EXPECT_TRUE(lines.last().contains(QStringLiteral("Code=1002"))) << lines.last().toStdString();
}

TEST_F(UpdateProbeTests, aBareExecutableFails) {
    configuration = {};
    EXPECT_EQ(run(), 1);
    EXPECT_EQ(lines, QStringList(QStringLiteral("err: Update check failed: Error Domain=SUSparkleErrorDomain "
                                                "Code=1 \"This build of Vistrel has no update feed.\"")));
}

} // namespace

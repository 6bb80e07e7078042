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
        item.archive = server.address(QStringLiteral("/archive"));
        item.length = 1;
        item.signature = QByteArray(64, 's');
    }

    void publish(const QByteArray& version) {
        item.version = version;
        server.serve(QStringLiteral("/feed"), feedWith(item));
    }

    QTemporaryDir folder;
    TestServer server;
    TestSigner signer;
    FeedItem item;
    FileUserDefaults defaults;
    UpdaterConfiguration configuration;
};

struct BuildCase {
    const char* name;
    void (*change)(UpdaterConfiguration&);
    bool hasUpdater;
    bool canCheck;
};

class UpdateBuildTests : public UpdateServiceTests, public ::testing::WithParamInterface<BuildCase> {};

TEST_P(UpdateBuildTests, canCheckOnlyWhenThereIsSomethingToCheck) {
    GetParam().change(configuration);
    UpdateService service(configuration, defaults);
    EXPECT_FALSE(service.canCheck());
    EXPECT_FALSE(service.automaticallyChecks());
    service.start();
    EXPECT_EQ(service.controller() != nullptr, GetParam().hasUpdater);
    EXPECT_EQ(service.canCheck(), GetParam().canCheck);
    bool activated = false;
    service.onActivate = [&] { activated = true; };
    service.checkForUpdates();
    EXPECT_EQ(activated, GetParam().canCheck);
}

INSTANTIATE_TEST_SUITE_P(
    Builds, UpdateBuildTests,
    ::testing::Values(
        BuildCase{"complete", [](UpdaterConfiguration&) {}, true, true},
        BuildCase{"bareExecutable", [](UpdaterConfiguration& build) { build.installed = false; }, false,
                  false},
        BuildCase{"noKey", [](UpdaterConfiguration& build) { build.publicKey.clear(); }, false, false},
        BuildCase{"unusableKey", [](UpdaterConfiguration& build) { build.publicKey = QStringLiteral("AA"); },
                  true, false},
        BuildCase{"noFeed", [](UpdaterConfiguration& build) { build.feedAddress.clear(); }, true, false}),
    [](const auto& entry) { return std::string(entry.param.name); });

TEST_F(UpdateServiceTests, theToggleIsWrittenOnceAndMirrored) {
    UpdateService service(configuration, defaults);
    service.start();
    service.start();
    EXPECT_TRUE(service.automaticallyChecks());
    int written = 0;
    int observed = 0;
    QObject::connect(service.controller(), &Updater::automaticallyChecksForUpdatesChanged, &service,
                     [&] { ++written; });
    QObject::connect(&service, &UpdateService::automaticallyChecksChanged, &service, [&] { ++observed; });
    service.setAutomaticallyChecks(false);
    EXPECT_EQ(written, 1);
    EXPECT_GE(observed, 1);
    EXPECT_FALSE(service.controller()->automaticallyChecksForUpdates());
    service.setAutomaticallyChecks(false);
    EXPECT_EQ(written, 1);

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

// The probe

class UpdateProbeTests : public UpdateServiceTests {
protected:
    int run(std::chrono::milliseconds deadline = 1h) {
        UpdateProbe::Options options;
        options.deadline = deadline;
        options.print = [this](const QString& line) { lines << QStringLiteral("out: ") + line; };
        options.printError = [this](const QString& line) { lines << QStringLiteral("err: ") + line; };
        return UpdateProbe(configuration, defaults, options).run();
    }

    QStringList lines;
};

TEST_F(UpdateProbeTests, namesANewerVersionAndCompletes) {
    item.more = "<sparkle:shortVersionString>2.0 beta</sparkle:shortVersionString>";
    publish("2.0");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(lines, (QStringList{QStringLiteral("out: Available update: 2.0 beta"),
                                  QStringLiteral("out: Update feed check completed")}));
}

TEST_F(UpdateProbeTests, saysThatNothingIsNewer) {
    publish("1.0");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(lines, QStringList(QStringLiteral("out: Vistrel is up to date")));
}

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

TEST_F(UpdateProbeTests, aSilentFeedEndsAtTheDeadline) {
    server.serve(QStringLiteral("/feed"), TestServer::silence());
    EXPECT_EQ(run(200ms), 1);
    EXPECT_EQ(lines, QStringList(QStringLiteral("err: Update check timed out")));
    // A deadline that has passed at the start is one as well.
    EXPECT_EQ(run(0ms), 1);
}

} // namespace

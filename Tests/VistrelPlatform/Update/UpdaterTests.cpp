#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/Update/TestServer.h"
#include "VistrelPlatform/Update/UpdateDownloadFile.h"
#include "VistrelPlatform/Update/UpdateTestSupport.h"
#include "VistrelPlatform/Update/Updater.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// Plays the user: notes what is shown and answers as told.
class ScriptedUser : public UpdateUserDriver {
public:
    void showCheck(std::function<void()> cancel) override {
        shown << QStringLiteral("check");
        if (cancelsCheck)
            cancel();
    }
    void showUpToDate(const QString& currentVersion) override {
        shown << QStringLiteral("up to date ") + currentVersion;
    }
    void showOffer(const UpdateOffer& offered, std::function<void(UpdateChoice)> reply) override {
        shown << QStringLiteral("offer ") + offered.item.displayVersion;
        offer = offered;
        if (choice)
            QMetaObject::invokeMethod(
                qApp, [reply, answer = *choice] { reply(answer); }, Qt::QueuedConnection);
    }
    void showDownload(const QString&, std::function<void()> cancel) override {
        shown << QStringLiteral("download");
        if (cancelsDownload)
            cancel();
    }
    void showDownloadProgress(qint64 received, qint64 total) override {
        EXPECT_LE(received, total);
        progressed = received;
    }
    void showInstalling() override { shown << QStringLiteral("install"); }
    void showInstalled(const QString&, std::function<void(bool)> reply) override {
        shown << QStringLiteral("installed");
        reply(true);
    }
    void showError(const Error& error) override { shown << QStringLiteral("error ") + error.description; }
    void bringToFront() override { shown << QStringLiteral("front"); }
    void dismiss() override {}

    QStringList shown;
    std::optional<UpdateOffer> offer;
    std::optional<UpdateChoice> choice = UpdateChoice::install;
    bool cancelsCheck = false;
    bool cancelsDownload = false;
    qint64 progressed = 0;
};

class UpdaterTests : public ::testing::Test, public UpdaterDelegate {
protected:
    UpdaterTests() : defaults(folder.filePath(QStringLiteral("defaults.json"))) {
        prefix = QFileInfo(folder.path()).canonicalFilePath() + QStringLiteral("/home/vistrel");
        writeInstalledTree(prefix, "1.0");
        const QString tree = folder.filePath(QStringLiteral("vistrel-2.0"));
        writeInstalledTree(tree, "2.0");
        archive = packedTree(tree);
        item.archive = server.address(QStringLiteral("/archive"));
        item.length = archive.size();
        item.signature = signer.sign(archive);
        publish();

        configuration.installed = true;
        configuration.feedAddress = server.address().toString();
        configuration.publicKey = signer.publicKey();
        configuration.version = QStringLiteral("1.0");
        configuration.executable = prefix + QStringLiteral("/bin/vistrel");
        configuration.downloadFolder = folder.filePath(QStringLiteral("cache/Update"));
        configuration.testAuthorities = server.authorities();
        configuration.checkJitter = {};
    }

    void publish() {
        server.serve(QStringLiteral("/feed"), feedWith(item));
        server.serve(QStringLiteral("/archive"), archive);
    }
    void start() {
        updater = std::make_unique<Updater>(configuration, defaults, &user, this);
        updater->onRelaunch = [this](const QString& program) { relaunched = program; };
        ASSERT_TRUE(updater->start());
        EXPECT_TRUE(updater->canCheckForUpdates());
    }
    /// Starts a check and waits for its end.
    void run(void (Updater::*check)()) {
        if (!updater)
            start();
        const std::size_t before = cycles.size();
        (*updater.*check)();
        EXPECT_TRUE(waitUntil([&] { return cycles.size() > before; }));
        EXPECT_TRUE(updater->canCheckForUpdates());
        const QDir downloads(configuration.downloadFolder);
        EXPECT_TRUE(downloads.entryList(QDir::AllEntries | QDir::NoDotAndDotDot).isEmpty());
    }
    QByteArray installed() const { return readFile(prefix + QStringLiteral("/bin/vistrel")); }
    int lastCode() const { return cycles.empty() || !cycles.back() ? 0 : cycles.back()->code; }

    void didFindValidUpdate(const AppcastItem& found) override { foundVersions << found.version.text(); }
    void didFinishUpdateCycle(const std::optional<Error>& error) override { cycles.push_back(error); }

    QTemporaryDir folder;
    TestServer server;
    TestSigner signer;
    QString prefix;
    QByteArray archive;
    FeedItem item;
    FileUserDefaults defaults;
    UpdaterConfiguration configuration;
    ScriptedUser user;
    std::unique_ptr<Updater> updater;
    QStringList foundVersions;
    std::vector<std::optional<Error>> cycles;
    QString relaunched;
};

TEST_F(UpdaterTests, installsASignedUpdateThatTheUserWants) {
    item.more = "<sparkle:shortVersionString>Two</sparkle:shortVersionString>";
    publish();
    run(&Updater::checkForUpdates);
    EXPECT_EQ(user.shown,
              (QStringList{QStringLiteral("check"), QStringLiteral("offer Two"), QStringLiteral("download"),
                           QStringLiteral("install"), QStringLiteral("installed")}));
    EXPECT_TRUE(user.offer->installable);
    EXPECT_EQ(user.progressed, archive.size());
    EXPECT_TRUE(installed().contains("echo 2.0"));
    EXPECT_EQ(relaunched, prefix + QStringLiteral("/bin/vistrel"));
    EXPECT_EQ(cycles.back(), std::nullopt);
}

struct SpoiltCase {
    const char* name;
    std::function<void(TestServer&, FeedItem&, QByteArray&)> spoil;
    /// What the user sees last.
    const char* error;
};

class SpoiltUpdateTests : public UpdaterTests, public ::testing::WithParamInterface<SpoiltCase> {};

TEST_P(SpoiltUpdateTests, isNotInstalled) {
    publish();
    GetParam().spoil(server, item, archive);
    run(&Updater::checkForUpdates);
    ASSERT_FALSE(user.shown.isEmpty());
    EXPECT_TRUE(user.shown.last().startsWith(QStringLiteral("error ")) &&
                user.shown.last().contains(QLatin1String(GetParam().error)))
        << user.shown.last().toStdString();
    EXPECT_NE(lastCode(), 0);
    EXPECT_TRUE(installed().contains("echo 1.0"));
    EXPECT_TRUE(relaunched.isEmpty());
}

void serveAgain(TestServer& server, const FeedItem& item, const QByteArray& archive) {
    server.serve(QStringLiteral("/feed"), feedWith(item));
    server.serve(QStringLiteral("/archive"), archive);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, SpoiltUpdateTests,
    ::testing::Values(
        SpoiltCase{"signedByAnother",
                   [](TestServer& server, FeedItem& item, QByteArray& archive) {
                       item.signature = TestSigner().sign(archive);
                       serveAgain(server, item, archive);
                   },
                   "not signed by its publisher"},
        SpoiltCase{"archiveExchanged",
                   [](TestServer& server, FeedItem& item, QByteArray& archive) {
                       archive[archive.size() / 2] = static_cast<char>(archive[archive.size() / 2] ^ 1);
                       serveAgain(server, item, archive);
                   },
                   "not signed by its publisher"},
        SpoiltCase{"lengthWrong",
                   [](TestServer& server, FeedItem& item, QByteArray& archive) {
                       item.length += 1;
                       serveAgain(server, item, archive);
                   },
                   "incomplete"},
        SpoiltCase{"downloadCutShort",
                   [](TestServer& server, FeedItem&, QByteArray& archive) {
                       server.serve(QStringLiteral("/archive"),
                                    TestServer::cutShort(archive.left(100), archive.size()));
                   },
                   "closed"},
        SpoiltCase{"archiveElsewhere",
                   [](TestServer& server, FeedItem&, QByteArray&) {
                       server.serve(QStringLiteral("/archive"),
                                    TestServer::redirect(QUrl(QStringLiteral("https://127.0.0.1:9/x"))));
                   },
                   "elsewhere"},
        SpoiltCase{"oldArchiveUnderANewVersion",
                   [](TestServer& server, FeedItem& item, QByteArray& archive) {
                       item.version = "3.0";
                       serveAgain(server, item, archive);
                   },
                   "does not hold version 3.0"},
        SpoiltCase{"feedTruncated",
                   [](TestServer& server, FeedItem& item, QByteArray&) {
                       server.serve(QStringLiteral("/feed"), feedWith(item).chopped(20));
                   },
                   "cannot be read"},
        SpoiltCase{"feedHuge",
                   [](TestServer& server, FeedItem&, QByteArray&) {
                       server.serve(QStringLiteral("/feed"), TestServer::endless(QByteArray(100000, ' ')));
                   },
                   "more than it should"},
        SpoiltCase{"feedMissing",
                   [](TestServer& server, FeedItem&, QByteArray&) {
                       server.serve(QStringLiteral("/feed"), TestServer::whole("", "404 Not Found"));
                   },
                   "Not Found"}),
    [](const auto& entry) { return std::string(entry.param.name); });

TEST_F(UpdaterTests, saysThatNothingIsNewer) {
    item.version = "1.0.0";
    publish();
    run(&Updater::checkForUpdates);
    EXPECT_EQ(user.shown.last(), QStringLiteral("up to date 1.0"));
    EXPECT_EQ(lastCode(), 1001);
    EXPECT_EQ(cycles.back()->domain, QStringLiteral("SUSparkleErrorDomain"));
    run(&Updater::checkForUpdatesInBackground);
    EXPECT_EQ(user.shown.size(), 2);
}

TEST_F(UpdaterTests, troubleInTheBackgroundIsNotShown) {
    server.serve(QStringLiteral("/feed"), QByteArrayLiteral("no feed"));
    run(&Updater::checkForUpdatesInBackground);
    EXPECT_TRUE(user.shown.isEmpty());
    EXPECT_EQ(lastCode(), 1000);
}

TEST_F(UpdaterTests, informationShowsNothingAndInstallsNothing) {
    run(&Updater::checkForUpdateInformation);
    EXPECT_EQ(foundVersions, QStringList(QStringLiteral("2.0")));
    EXPECT_EQ(cycles.back(), std::nullopt);
    EXPECT_TRUE(user.shown.isEmpty());
}

TEST_F(UpdaterTests, skippedVersionComesBackOnlyWhenAskedFor) {
    user.choice = UpdateChoice::skip;
    run(&Updater::checkForUpdatesInBackground);
    EXPECT_EQ(user.shown, QStringList(QStringLiteral("offer 2.0")));
    EXPECT_FALSE(user.offer->userInitiated);
    run(&Updater::checkForUpdatesInBackground);
    EXPECT_EQ(user.shown.size(), 1);
    user.choice = UpdateChoice::remindLater;
    run(&Updater::checkForUpdates);
    EXPECT_EQ(user.shown.last(), QStringLiteral("offer 2.0"));
    item.version = "2.1";
    publish();
    run(&Updater::checkForUpdatesInBackground);
    EXPECT_EQ(user.shown.last(), QStringLiteral("offer 2.1"));
    EXPECT_TRUE(installed().contains("echo 1.0"));
}

TEST_F(UpdaterTests, cancellingEndsQuietly) {
    user.cancelsCheck = true;
    server.serve(QStringLiteral("/feed"), TestServer::silence());
    run(&Updater::checkForUpdates);
    user.cancelsCheck = false;
    user.cancelsDownload = true;
    publish();
    server.serve(QStringLiteral("/archive"), TestServer::silence());
    run(&Updater::checkForUpdates);
    EXPECT_EQ(user.shown.last(), QStringLiteral("download"));
    EXPECT_EQ(cycles, (std::vector<std::optional<Error>>{std::nullopt, std::nullopt}));
}

TEST_F(UpdaterTests, aManagedCopyIsOnlyTold) {
    writeFile(prefix + QStringLiteral("/bin/other"), "another program lives here");
    run(&Updater::checkForUpdates);
    EXPECT_FALSE(user.offer->installable);
    EXPECT_EQ(user.shown.last(), QStringLiteral("offer 2.0"));
    EXPECT_TRUE(installed().contains("echo 1.0"));
}

TEST_F(UpdaterTests, offersWaitWhileTheUserIsBusyAndComeWhenAskedFor) {
    start();
    user.choice.reset();
    updater->mayInterrupt = [] { return false; };
    updater->checkForUpdatesInBackground();
    ASSERT_TRUE(waitUntil([this] { return !foundVersions.isEmpty(); }));
    EXPECT_TRUE(user.shown.isEmpty());
    updater->checkForUpdates();
    EXPECT_EQ(user.shown, QStringList(QStringLiteral("offer 2.0")));
    updater->checkForUpdates();
    EXPECT_EQ(user.shown.last(), QStringLiteral("front"));
}

TEST_F(UpdaterTests, onlyOneCheckAtATime) {
    start();
    server.serve(QStringLiteral("/feed"), TestServer::silence());
    updater->checkForUpdates();
    EXPECT_FALSE(updater->canCheckForUpdates());
    updater->checkForUpdatesInBackground();
    updater->checkForUpdateInformation();
    ASSERT_TRUE(waitUntil([this] { return !server.requests.isEmpty(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(server.requests.size(), 1);
}

TEST_F(UpdaterTests, unusableConfigurationsDoNotStart) {
    const UpdaterConfiguration good = configuration;
    const auto startsWith = [&](const std::function<void(UpdaterConfiguration&)>& change) {
        UpdaterConfiguration changed = good;
        change(changed);
        Updater attempt(changed, defaults, &user);
        const bool started = attempt.start().has_value();
        EXPECT_EQ(attempt.canCheckForUpdates(), started);
        return started;
    };
    EXPECT_TRUE(startsWith([](auto&) {}));
    EXPECT_FALSE(startsWith([](auto& changed) { changed.installed = false; }));
    EXPECT_FALSE(startsWith([](auto& changed) { changed.feedAddress.clear(); }));
    EXPECT_FALSE(
        startsWith([](auto& changed) { changed.feedAddress = QStringLiteral("http://localhost/"); }));
    EXPECT_FALSE(startsWith([](auto& changed) { changed.publicKey = QStringLiteral("AAAA"); }));
    EXPECT_FALSE(startsWith([](auto& changed) { changed.version = QStringLiteral("development"); }));
}

TEST_F(UpdaterTests, aDueCheckComesByItselfAfterTheSetupUnlessSwitchedOff) {
    defaults.setNumber(QStringLiteral("SULastCheckTime"), 0);
    configuration.quietTime = std::chrono::milliseconds(1);
    user.choice = UpdateChoice::remindLater;
    int asked = 0;
    bool throughSetup = false;
    FileUserDefaults without(folder.filePath(QStringLiteral("without.json")));
    without.setNumber(QStringLiteral("SULastCheckTime"), 0);
    without.setBoolean(QStringLiteral("SUEnableAutomaticChecks"), false);
    Updater switchedOff(configuration, without, &user);
    bool offAsked = false;
    switchedOff.mayCheckUnasked = [&] { return offAsked = true; };
    ASSERT_TRUE(switchedOff.start());

    start();
    updater->mayCheckUnasked = [&] {
        ++asked;
        return throughSetup;
    };
    ASSERT_TRUE(waitUntil([&] { return asked >= 2; }));
    EXPECT_TRUE(server.requests.isEmpty());
    EXPECT_FALSE(offAsked);
    throughSetup = true;
    ASSERT_TRUE(waitUntil([&] { return cycles.size() == 1; }));
    EXPECT_EQ(user.shown, QStringList(QStringLiteral("offer 2.0")));
    EXPECT_GT(*defaults.number(QStringLiteral("SULastCheckTime")), 0);
}

TEST_F(UpdaterTests, theNextCheckIsDueADayAfterTheLast) {
    const auto now = static_cast<double>(QDateTime::currentSecsSinceEpoch());
    struct Row {
        const char* name;
        std::optional<double> last;
        double expectedHours;
    };
    for (const Row& row : {Row{"neverChecked", std::nullopt, 24}, Row{"anHourAgo", now - 3600, 23},
                           Row{"yesterday", now - 90000, 0}, Row{"clockWasAhead", now + 1e6, 24}}) {
        FileUserDefaults store(folder.filePath(QLatin1String(row.name)));
        if (row.last)
            store.setNumber(QStringLiteral("SULastCheckTime"), *row.last);
        UpdateSchedule schedule(store);
        EXPECT_TRUE(schedule.automaticallyChecks());
        const auto delay = schedule.delay(QDateTime::fromSecsSinceEpoch(qint64(now)), std::chrono::hours(24));
        EXPECT_DOUBLE_EQ(static_cast<double>(delay.count()) / 3.6e6, row.expectedHours) << row.name;
    }
}

TEST_F(UpdaterTests, switchingChecksOffIsKept) {
    start();
    int signalled = 0;
    QObject::connect(updater.get(), &Updater::automaticallyChecksForUpdatesChanged, updater.get(),
                     [&] { ++signalled; });
    updater->setAutomaticallyChecksForUpdates(false);
    EXPECT_EQ(signalled, 1);
    EXPECT_EQ(defaults.boolean(QStringLiteral("SUEnableAutomaticChecks")), false);
    EXPECT_FALSE(Updater(configuration, defaults, &user).automaticallyChecksForUpdates());
}

TEST_F(UpdaterTests, downloadsAreForTheUserAlone) {
    const QString place = folder.filePath(QStringLiteral("a/b"));
    writeFile(place + QStringLiteral("/left"), "from an interrupted download");
    const auto file = UpdateDownloadFile::create(place);
    ASSERT_TRUE(file);
    const QFile::Permissions others =
        QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther;
    EXPECT_EQ(QFile::permissions(place) & others, QFile::Permissions());
    EXPECT_EQ(file->permissions() & others, QFile::Permissions());
    EXPECT_FALSE(QFileInfo::exists(place + QStringLiteral("/left")));
}

} // namespace

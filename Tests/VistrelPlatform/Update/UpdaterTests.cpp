#include "Support/LinkedNetwork.h"
#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/Update/TestServer.h"
#include "VistrelPlatform/Update/UpdateDownloadFile.h"
#include "VistrelPlatform/Update/UpdateTestSupport.h"
#include "VistrelPlatform/Update/Updater.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString lastCheck = u"SULastCheckTime"_s;

/// Plays the user: notes what is shown and answers as told.
class ScriptedUser : public UpdateUserDriver {
public:
    void showCheck(std::function<void()> cancel) override { begin(u"check"_s, cancel); }
    void showUpToDate(const QString& current) override { shown << u"up to date "_s + current; }
    void showOffer(const UpdateOffer& offered, std::function<void(UpdateChoice)> reply) override {
        shown << u"offer "_s + offered.item.displayVersion;
        offer = offered;
        if (choice)
            QMetaObject::invokeMethod(
                qApp, [reply, answer = *choice] { reply(answer); }, Qt::QueuedConnection);
    }
    void showDownload(const QString&, std::function<void()> cancel) override { begin(u"download"_s, cancel); }
    void showDownloadProgress(qint64 received, qint64 total) override {
        EXPECT_LE(received, total);
        progressed = received;
    }
    void showInstalling() override { shown << u"install"_s; }
    void showInstalled(const QString&, std::function<void(bool)> reply) override {
        shown << u"installed"_s;
        reply(true);
    }
    void showError(const Error& error) override { shown << u"error "_s + error.description; }
    void bringToFront() override { shown << u"front"_s; }
    void dismiss() override {}

    std::string story() const { return shown.join(u", "_s).toStdString(); }

    QStringList shown;
    std::optional<UpdateOffer> offer;
    std::optional<UpdateChoice> choice = UpdateChoice::install;
    QString cancelsAt;
    qint64 progressed = 0;

private:
    void begin(const QString& step, const std::function<void()>& cancel) {
        shown << step;
        if (step == cancelsAt)
            cancel();
    }
};

class UpdaterTests : public ::testing::Test, public UpdaterDelegate {
protected:
    UpdaterTests() {
        writeInstalledTree(prefix, "1.0");
        writeInstalledTree(folder.filePath(u"vistrel-2.0"_s), "2.0");
        archive = readFile(packTree(folder.filePath(u"vistrel-2.0"_s)));
        item.archive = server.address(u"/archive"_s);
        item.length = archive.size();
        item.signature = signer.sign(archive);
        publish();

        configuration.installed = true;
        configuration.feedAddress = server.address().toString();
        configuration.publicKey = signer.publicKey();
        configuration.version = u"1.0"_s;
        configuration.executable = prefix + u"/bin/vistrel"_s;
        configuration.downloadFolder = folder.filePath(u"cache/Update"_s);
        configuration.network = linkedNetwork;
        configuration.testAuthorities = server.authorities();
        configuration.checkJitter = {};
    }

    void publish() {
        server.serve(u"/feed"_s, feedWith(item));
        server.serve(u"/archive"_s, archive);
    }
    void publish(const QByteArray& version) {
        item.version = version;
        publish();
    }
    void start() {
        updater = std::make_unique<Updater>(configuration, defaults, &user, this);
        updater->onRelaunch = [this](const QString& program) { relaunched = program; };
        ASSERT_TRUE(updater->start());
    }
    /// Starts a check, waits for its end and returns its error's code.
    int run(void (Updater::*check)()) {
        if (!updater)
            start();
        const std::size_t before = cycles.size();
        (*updater.*check)();
        EXPECT_TRUE(waitUntil([&] { return cycles.size() > before; }));
        EXPECT_TRUE(updater->canCheckForUpdates());
        EXPECT_EQ(entriesOf(configuration.downloadFolder), QStringList());
        return cycles.back() ? cycles.back()->code : 0;
    }
    bool holds(const char* version) const {
        return readFile(configuration.executable).contains(QByteArray("echo ") + version);
    }

    void didFindValidUpdate(const AppcastItem& found) override { foundVersions << found.version.text(); }
    void didFinishUpdateCycle(const std::optional<Error>& error) override { cycles.push_back(error); }

    QTemporaryDir folder;
    QString prefix = QFileInfo(folder.path()).canonicalFilePath() + u"/home/vistrel"_s;
    TestServer server;
    TestSigner signer;
    QByteArray archive;
    FeedItem item;
    FileUserDefaults defaults{folder.filePath(u"defaults.json"_s)};
    UpdaterConfiguration configuration;
    ScriptedUser user;
    std::unique_ptr<Updater> updater;
    QStringList foundVersions;
    std::vector<std::optional<Error>> cycles;
    QString relaunched;
};

} // namespace

TEST_F(UpdaterTests, installsASignedUpdateThatTheUserWants) {
    item.more = "<sparkle:shortVersionString>Two</sparkle:shortVersionString>";
    publish();
    EXPECT_EQ(run(&Updater::checkForUpdates), 0);
    EXPECT_EQ(user.story(), "check, offer Two, download, install, installed");
    EXPECT_TRUE(user.offer->installable);
    EXPECT_EQ(user.progressed, archive.size());
    EXPECT_TRUE(holds("2.0"));
    EXPECT_EQ(relaunched, configuration.executable);
}

TEST_F(UpdaterTests, aSpoiltUpdateIsNotInstalled) {
    const FeedItem goodItem = item;
    const QByteArray goodArchive = archive;
    const struct {
        const char* name;
        std::function<void()> spoil;
        const char* error;
        TestServer::Answer feed = {};
    } rows[] = {
        {"signedByAnother", [&] { item.signature = TestSigner().sign(archive); },
         "not signed by its publisher"},
        {"archiveExchanged", [&] { archive[99] = char(archive[99] ^ 1); }, "not signed by its publisher"},
        {"lengthWrong", [&] { item.length += 1; }, "incomplete"},
        {"oldArchiveUnderANewVersion", [&] { item.version = "3.0"; }, "does not hold version 3.0"},
        {"feedUnreadable", [] {}, "cannot be read", TestServer::whole("<rss>")},
        {"feedHuge", [] {}, "more than it should", TestServer::endless(QByteArray(100000, ' '))},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        item = goodItem;
        archive = goodArchive;
        row.spoil();
        publish();
        if (row.feed)
            server.serve(u"/feed"_s, row.feed);
        EXPECT_NE(run(&Updater::checkForUpdates), 0);
        EXPECT_TRUE(user.shown.last().startsWith(u"error "));
        EXPECT_TRUE(user.shown.last().contains(QLatin1String(row.error))) << user.story();
        EXPECT_TRUE(holds("1.0"));
        EXPECT_TRUE(relaunched.isEmpty());
    }
}

TEST_F(UpdaterTests, onlyWhoAsksIsToldThatThereIsNothing) {
    publish("1.0.0");
    EXPECT_EQ(run(&Updater::checkForUpdates), 1001);
    EXPECT_EQ(cycles.back()->domain, u"SUSparkleErrorDomain"_s);
    EXPECT_EQ(run(&Updater::checkForUpdatesInBackground), 1001);
    server.serve(u"/feed"_s, QByteArrayLiteral("no feed"));
    EXPECT_EQ(run(&Updater::checkForUpdatesInBackground), 1000);
    publish("2.0");
    EXPECT_EQ(run(&Updater::checkForUpdateInformation), 0);
    EXPECT_EQ(foundVersions, QStringList(u"2.0"_s));
    EXPECT_EQ(user.story(), "check, up to date 1.0");
}

TEST_F(UpdaterTests, skippedVersionComesBackOnlyWhenAskedFor) {
    user.choice = UpdateChoice::skip;
    run(&Updater::checkForUpdatesInBackground);
    EXPECT_FALSE(user.offer->userInitiated);
    run(&Updater::checkForUpdatesInBackground);
    EXPECT_EQ(user.story(), "offer 2.0");
    user.choice = UpdateChoice::remindLater;
    run(&Updater::checkForUpdates);
    publish("2.1");
    run(&Updater::checkForUpdatesInBackground);
    EXPECT_EQ(user.story(), "offer 2.0, check, offer 2.0, offer 2.1");
    EXPECT_TRUE(holds("1.0"));
}

TEST_F(UpdaterTests, cancellingEndsQuietly) {
    user.cancelsAt = u"check"_s;
    server.serve(u"/feed"_s, TestServer::silence());
    EXPECT_EQ(run(&Updater::checkForUpdates), 0);
    user.cancelsAt = u"download"_s;
    publish();
    server.serve(u"/archive"_s, TestServer::silence());
    EXPECT_EQ(run(&Updater::checkForUpdates), 0);
    EXPECT_EQ(user.story(), "check, check, offer 2.0, download");
}

TEST_F(UpdaterTests, aManagedCopyIsOnlyTold) {
    writeFile(prefix + u"/bin/other"_s, "another program lives here");
    run(&Updater::checkForUpdates);
    EXPECT_FALSE(user.offer->installable);
    EXPECT_EQ(user.story(), "check, offer 2.0");
    EXPECT_TRUE(holds("1.0"));
}

TEST_F(UpdaterTests, offersWaitWhileTheUserIsBusyAndComeWhenAskedFor) {
    start();
    user.choice.reset();
    updater->mayInterrupt = [] { return false; };
    updater->checkForUpdatesInBackground();
    ASSERT_TRUE(waitUntil([this] { return !foundVersions.isEmpty(); }));
    EXPECT_EQ(user.story(), "");
    updater->checkForUpdates();
    updater->checkForUpdates();
    EXPECT_EQ(user.story(), "offer 2.0, front");
}

TEST_F(UpdaterTests, aDueCheckComesByItselfAfterTheSetupUnlessSwitchedOff) {
    defaults.setNumber(lastCheck, 0);
    configuration.quietTime = std::chrono::milliseconds(1);
    user.choice = UpdateChoice::remindLater;
    FileUserDefaults otherDefaults(folder.filePath(u"without.json"_s));
    otherDefaults.setNumber(lastCheck, 0);
    Updater(configuration, otherDefaults, &user).setAutomaticallyChecksForUpdates(false);
    Updater switchedOff(configuration, otherDefaults, &user);
    bool offAsked = false;
    switchedOff.mayCheckUnasked = [&] { return offAsked = true; };
    ASSERT_TRUE(switchedOff.start());

    start();
    int asked = 0;
    bool throughSetup = false;
    updater->mayCheckUnasked = [&] { return ++asked > 0 && throughSetup; };
    ASSERT_TRUE(waitUntil([&] { return asked >= 2; }));
    EXPECT_TRUE(server.requests().empty());
    EXPECT_FALSE(offAsked);
    throughSetup = true;
    ASSERT_TRUE(waitUntil([&] { return cycles.size() == 1; }));
    EXPECT_EQ(user.story(), "offer 2.0");
    EXPECT_GT(*defaults.number(lastCheck), 0);
}

TEST_F(UpdaterTests, theNextCheckIsDueADayAfterTheLast) {
    const auto now = static_cast<double>(QDateTime::currentSecsSinceEpoch());
    const std::tuple<const char*, std::optional<double>, double> rows[] = {{"neverChecked", std::nullopt, 24},
                                                                           {"anHourAgo", now - 3600, 23},
                                                                           {"yesterday", now - 90000, 0},
                                                                           {"clockWasAhead", now + 1e6, 24}};
    for (const auto& [name, last, expectedHours] : rows) {
        FileUserDefaults store(folder.filePath(QLatin1String(name)));
        if (last)
            store.setNumber(lastCheck, *last);
        const auto delay =
            UpdateSchedule(store).delay(QDateTime::fromSecsSinceEpoch(qint64(now)), std::chrono::hours(24));
        EXPECT_DOUBLE_EQ(static_cast<double>(delay.count()) / 3.6e6, expectedHours) << name;
    }
}

TEST_F(UpdaterTests, downloadsAreForTheUserAlone) {
    const QString place = folder.filePath(u"a/b"_s);
    writeFile(place + u"/left"_s, "from an interrupted download");
    const auto file = UpdateDownloadFile::create(place);
    ASSERT_TRUE(file);
    for (const QFile::Permissions permissions : {QFile::permissions(place), file->permissions()})
        EXPECT_FALSE(permissions &
                     (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther));
    EXPECT_EQ(entriesOf(place), QStringList(QFileInfo(*file).fileName()));
}

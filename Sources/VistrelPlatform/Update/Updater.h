#pragma once

#include "VistrelPlatform/Update/UpdateInstallation.h"
#include "VistrelPlatform/Update/UpdateSchedule.h"
#include "VistrelPlatform/Update/UpdateUserDriver.h"
#include "VistrelPlatform/Update/UpdaterConfiguration.h"

#include <QBuffer>
#include <QObject>
#include <QTemporaryFile>
#include <QTimer>

#include <functional>
#include <memory>

/// Told about each check, whoever began it. Main thread.
class UpdaterDelegate {
public:
    UpdaterDelegate() = default;
    UpdaterDelegate(const UpdaterDelegate&) = delete;
    UpdaterDelegate& operator=(const UpdaterDelegate&) = delete;
    virtual ~UpdaterDelegate() = default;

    virtual void didFindValidUpdate(const AppcastItem& item) = 0;
    virtual void didFinishUpdateCycle(const std::optional<Error>& error) = 0;
};

/// Finds, fetches, verifies and installs newer versions of this program. Main thread; verifying and
/// installing happen on a worker. Nothing is installed before the user has agreed.
class Updater : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged)
    Q_PROPERTY(bool automaticallyChecksForUpdates READ automaticallyChecksForUpdates WRITE
                   setAutomaticallyChecksForUpdates NOTIFY automaticallyChecksForUpdatesChanged)
public:
    /// `defaults` and `driver` are borrowed and outlive the updater; a null driver serves checks for
    /// information only.
    Updater(UpdaterConfiguration whatToUpdate, UserDefaults& defaults, UpdateUserDriver* userDriver,
            UpdaterDelegate* observer = nullptr, QObject* parent = nullptr);
    ~Updater() override;

    /// Fails when the build names no usable feed or key. Afterwards checks come by themselves, if the user
    /// wants them.
    Result<void> start();

    bool canCheckForUpdates() const { return started && stage != Stage::fetchingFeed; }
    bool automaticallyChecksForUpdates() const { return schedule.automaticallyChecks(); }
    void setAutomaticallyChecksForUpdates(bool checks);

    /// The user asks: every outcome is shown. An update that is already under way comes to the front.
    void checkForUpdates();
    /// Only an update that the user has not skipped is shown.
    void checkForUpdatesInBackground();
    /// Shows nothing; the delegate hears everything.
    void checkForUpdateInformation();

    /// Asked before a check that comes by itself; while it says no, the check waits.
    std::function<bool()> mayCheckUnasked;
    /// Asked before a window is shown that nobody called for; while it says no, the offer waits.
    std::function<bool()> mayInterrupt;
    /// The user wants the new version now: start this program once the present one has ended.
    std::function<void(const QString& program)> onRelaunch;

Q_SIGNALS:
    void canCheckForUpdatesChanged();
    void automaticallyChecksForUpdatesChanged();

private:
    enum class Stage { idle, fetchingFeed, offering, downloading, installing, finishing };
    enum class Kind { interactive, background, information };

    void begin(Kind kind);
    void feedReceived(const Result<void>& outcome);
    void offerUpdate(AppcastItem item);
    void chosen(UpdateChoice choice);
    void download();
    void downloaded(const Result<void>& outcome);
    void installed(const Result<QString>& program);
    void finish(const std::optional<Error>& error);
    /// Ends the cycle with an error that the user sees if the check was theirs or had become so.
    void fail(const Error& error);
    void setStage(Stage next);
    void dropTransfer();
    void plan();
    HttpsTransfer::Request request(const QUrl& address) const;

    const UpdaterConfiguration configuration;
    UpdateSchedule schedule;
    UpdateUserDriver* driver;
    UpdaterDelegate* delegate;
    bool started = false;
    Stage stage = Stage::idle;
    Kind kind = Kind::information;
    std::optional<UpdateVersion> currentVersion;
    QByteArray publicKey;
    UpdateInstallation installation;
    std::optional<AppcastItem> offered;

    /// Null before the first check.
    NetworkServices* network = nullptr;
    std::unique_ptr<HttpsTransfer> transfer;
    QBuffer feed;
    std::unique_ptr<QTemporaryFile> archive;
    QTimer nextCheck;
    QTimer interruption;
    QDateTime due;
};

#include "VistrelPlatform/Update/Updater.h"

#include "VistrelPlatform/System/WhenFinished.h"
#include "VistrelPlatform/Update/Appcast.h"
#include "VistrelPlatform/Update/UpdateDownloadFile.h"
#include "VistrelPlatform/Update/UpdateError.h"
#include "VistrelPlatform/Update/UpdateSignature.h"

#include <QRandomGenerator>
#include <QtConcurrent>

namespace {

/// The clock may be put forward and the machine may sleep, so the time is looked at now and then.
constexpr std::chrono::milliseconds longestNap = std::chrono::hours(6);
constexpr std::chrono::milliseconds interruptionRetry = std::chrono::minutes(1);

/// On a worker: everything between the finished download and the new program.
Result<QString> verifyAndReplace(const QString& archive, const AppcastItem& item, const QByteArray& key,
                                 const NetworkServices& cryptography,
                                 const UpdateInstallation& installation) {
    if (const auto verified =
            UpdateSignature::verify(archive, {item.length, item.signature, key}, cryptography);
        !verified)
        return tl::unexpected(verified.error());
    return installation.replace(archive, item.version);
}

} // namespace

Updater::Updater(UpdaterConfiguration whatToUpdate, UserDefaults& defaults, UpdateUserDriver* userDriver,
                 UpdaterDelegate* observer, QObject* parent)
    : QObject(parent),
      configuration(std::move(whatToUpdate)),
      schedule(defaults),
      driver(userDriver),
      delegate(observer) {
    nextCheck.setSingleShot(true);
    nextCheck.setTimerType(Qt::VeryCoarseTimer);
    connect(&nextCheck, &QTimer::timeout, this, [this] {
        if (stage != Stage::idle)
            return; // the end of this cycle plans the next
        if (!due.isValid() || QDateTime::currentDateTimeUtc() < due)
            plan();
        else if (mayCheckUnasked && !mayCheckUnasked())
            nextCheck.start(configuration.quietTime);
        else
            checkForUpdatesInBackground();
    });
    interruption.setSingleShot(true);
    interruption.setTimerType(Qt::VeryCoarseTimer);
    connect(&interruption, &QTimer::timeout, this, [this] {
        if (offered)
            offerUpdate(*offered);
    });
}

Updater::~Updater() = default;

Result<void> Updater::start() {
    const auto unusable = [](const QString& what) {
        return tl::unexpected(UpdateError::make(UpdateError::notConfigured, what));
    };
    const QUrl address(configuration.feedAddress, QUrl::StrictMode);
    if (!configuration.installed || configuration.feedAddress.isEmpty())
        return unusable(QStringLiteral("This build of Vistrel has no update feed."));
    if (!address.isValid() || address.scheme() != QLatin1String("https") || address.host().isEmpty())
        return unusable(QStringLiteral("The address of the update feed is not a secure one."));
    const auto key = UpdateSignature::publicKey(configuration.publicKey);
    if (!key)
        return unusable(QStringLiteral("This build of Vistrel has no usable key for updates."));
    currentVersion = UpdateVersion::parse(configuration.version);
    if (!currentVersion)
        return unusable(QStringLiteral("This build of Vistrel has no version."));
    publicKey = *key;
    started = true;
    Q_EMIT canCheckForUpdatesChanged();
    plan();
    return {};
}

void Updater::setAutomaticallyChecksForUpdates(bool checks) {
    schedule.setAutomaticallyChecks(checks);
    due = {};
    plan();
    Q_EMIT automaticallyChecksForUpdatesChanged();
}

void Updater::plan() {
    nextCheck.stop();
    // A check for information belongs to a program that ends with it.
    if (!started || driver == nullptr || !schedule.automaticallyChecks())
        return;
    const QDateTime now = QDateTime::currentDateTimeUtc();
    if (!due.isValid()) {
        const auto span = static_cast<double>(configuration.checkJitter.count());
        const auto jitter = static_cast<qint64>(QRandomGenerator::global()->generateDouble() * span);
        const auto delay =
            std::max(schedule.delay(now, configuration.checkInterval), configuration.quietTime);
        due = now.addMSecs(delay.count() + jitter);
    }
    const std::chrono::milliseconds rest(std::max<qint64>(0, now.msecsTo(due)));
    nextCheck.start(std::min(rest, longestNap));
}

void Updater::checkForUpdates() {
    if (!started || driver == nullptr)
        return;
    if (stage == Stage::idle) {
        begin(Kind::interactive);
    } else if (interruption.isActive()) {
        interruption.stop();
        kind = Kind::interactive;
        offerUpdate(*offered);
    } else {
        driver->bringToFront();
    }
}

void Updater::checkForUpdatesInBackground() {
    if (started && driver != nullptr && stage == Stage::idle)
        begin(Kind::background);
}

void Updater::checkForUpdateInformation() {
    if (started && stage == Stage::idle)
        begin(Kind::information);
}

HttpsTransfer::Request Updater::request(const QUrl& address) const {
    HttpsTransfer::Request what;
    what.address = address;
    what.userAgent = QStringLiteral("Vistrel/%1 VistrelUpdate/1").arg(configuration.version).toLatin1();
    what.testAuthorities = configuration.testAuthorities;
    return what;
}

void Updater::begin(Kind next) {
    kind = next;
    if (kind != Kind::information)
        schedule.noteCheck(QDateTime::currentDateTimeUtc());
    due = {};
    feed.close();
    feed.setData({});
    feed.open(QIODevice::WriteOnly);
    setStage(Stage::fetchingFeed);
    const Result<NetworkServices*> services = configuration.network();
    if (!services) {
        fail(UpdateError::make(UpdateError::feedUnavailable, services.error().description));
        return;
    }
    network = *services;
    transfer = network->makeTransfer();
    transfer->onFinished = [this](const Result<void>& outcome) { feedReceived(outcome); };
    HttpsTransfer::Request what = request(QUrl(configuration.feedAddress));
    what.accept = "application/rss+xml, application/xml;q=0.9, text/xml;q=0.9";
    what.limit = Appcast::maximumSize;
    transfer->start(what, feed);
    if (kind == Kind::interactive)
        driver->showCheck([this] {
            dropTransfer();
            finish(std::nullopt);
        });
}

void Updater::feedReceived(const Result<void>& outcome) {
    dropTransfer();
    if (!outcome) {
        fail(UpdateError::make(UpdateError::feedUnavailable, outcome.error().description));
        return;
    }
    const auto items = Appcast::parse(feed.data());
    if (!items) {
        fail(items.error());
        return;
    }
    Appcast::Wanted wanted{*currentVersion, UpdateVersion::parse(configuration.systemVersion), std::nullopt};
    if (kind == Kind::background)
        wanted.skipped = schedule.skippedVersion();
    const auto found = Appcast::best(*items, wanted);
    if (!found) {
        if (kind == Kind::interactive)
            driver->showUpToDate(currentVersion->text());
        finish(UpdateError::make(UpdateError::noUpdate, QStringLiteral("Vistrel is up to date.")));
        return;
    }
    if (delegate != nullptr)
        delegate->didFindValidUpdate(*found);
    if (kind == Kind::information)
        finish(std::nullopt);
    else
        offerUpdate(*found);
}

void Updater::offerUpdate(AppcastItem item) {
    offered = std::move(item);
    setStage(Stage::offering);
    if (kind == Kind::background && mayInterrupt && !mayInterrupt()) {
        interruption.start(interruptionRetry);
        return;
    }
    installation = UpdateInstallation::detect(configuration.executable, configuration.appImage);
    const bool installable = installation.kind != UpdateInstallation::Kind::managed;
    driver->showOffer({*offered, currentVersion->text(), installable, kind == Kind::interactive},
                      [this](UpdateChoice choice) { chosen(choice); });
}

void Updater::chosen(UpdateChoice choice) {
    if (choice == UpdateChoice::install && installation.kind != UpdateInstallation::Kind::managed) {
        kind = Kind::interactive;
        download();
        return;
    }
    if (choice == UpdateChoice::skip)
        schedule.skip(offered->version);
    driver->dismiss();
    finish(std::nullopt);
}

void Updater::download() {
    archive = UpdateDownloadFile::create(configuration.downloadFolder);
    if (!archive) {
        fail(UpdateError::make(
            UpdateError::downloadFailed,
            QStringLiteral("The update cannot be stored in %1.").arg(configuration.downloadFolder)));
        return;
    }
    setStage(Stage::downloading);
    transfer = network->makeTransfer();
    transfer->onProgress = [this](qint64 received, qint64 total) {
        driver->showDownloadProgress(received, total);
    };
    transfer->onFinished = [this](const Result<void>& outcome) { downloaded(outcome); };
    HttpsTransfer::Request what = request(offered->archive);
    what.accept = "application/octet-stream, */*;q=0.5";
    what.exactLength = offered->length;
    what.total = std::chrono::hours(6);
    transfer->start(what, *archive);
    driver->showDownload(offered->displayVersion, [this] {
        dropTransfer();
        driver->dismiss();
        finish(std::nullopt);
    });
}

void Updater::downloaded(const Result<void>& outcome) {
    dropTransfer();
    if (!outcome) {
        fail(UpdateError::make(UpdateError::downloadFailed, outcome.error().description));
        return;
    }
    if (!archive->flush()) {
        fail(UpdateError::make(UpdateError::downloadFailed, archive->errorString()));
        return;
    }
    setStage(Stage::installing);
    driver->showInstalling();
    const auto work = [file = archive->fileName(), item = *offered, key = publicKey, cryptography = network,
                       place = installation] {
        return verifyAndReplace(file, item, key, *cryptography, place);
    };
    whenFinished(QtConcurrent::run(work), this,
                 [this](const Result<QString>& program) { installed(program); });
}

void Updater::installed(const Result<QString>& program) {
    if (!program) {
        fail(program.error());
        return;
    }
    setStage(Stage::finishing);
    archive.reset();
    driver->showInstalled(offered->displayVersion, [this, path = *program](bool relaunch) {
        driver->dismiss();
        finish(std::nullopt);
        if (relaunch && onRelaunch)
            onRelaunch(path);
    });
}

void Updater::fail(const Error& error) {
    if (kind == Kind::interactive)
        driver->showError(error);
    finish(error);
}

void Updater::finish(const std::optional<Error>& error) {
    archive.reset();
    feed.close();
    feed.setData({});
    offered.reset();
    setStage(Stage::idle);
    plan();
    if (delegate != nullptr)
        delegate->didFinishUpdateCycle(error);
}

void Updater::setStage(Stage next) {
    stage = next;
    Q_EMIT canCheckForUpdatesChanged();
}

void Updater::dropTransfer() {
    if (!transfer)
        return;
    // It may be reporting at this moment.
    transfer->cancel();
    transfer.release()->deleteLater();
}

#include "Updates/UpdateService.h"

#include "Updates/UpdateWindows.h"
#include "VistrelPlatform/Update/UpdateRelaunch.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QUrl>

UpdateService::UpdateService(UpdaterConfiguration whatToUpdate, UserDefaults& store,
                             std::unique_ptr<UpdateUserDriver> userDriver, QObject* parent)
    : QObject(parent),
      configuration(std::move(whatToUpdate)),
      defaults(store),
      driver(std::move(userDriver)) {}

UpdateService::~UpdateService() = default;

void UpdateService::start() {
    if (updater || !configuration.installed || configuration.publicKey.isEmpty())
        return;
    if (!driver)
        driver = std::make_unique<UpdateWindows>();
    updater = std::make_unique<Updater>(configuration, defaults, driver.get());
    updater->mayCheckUnasked = [this] { return !mayCheckUnasked || mayCheckUnasked(); };
    updater->mayInterrupt = [this] { return !mayInterrupt || mayInterrupt(); };
    updater->onRelaunch = [this](const QString& program) { relaunch(program); };

    connect(updater.get(), &Updater::canCheckForUpdatesChanged, this,
            [this] { setCanCheck(updater->canCheckForUpdates()); });
    connect(updater.get(), &Updater::automaticallyChecksForUpdatesChanged, this,
            [this] { setAutomaticallyChecks(updater->automaticallyChecksForUpdates()); });
    setCanCheck(updater->canCheckForUpdates());
    setAutomaticallyChecks(updater->automaticallyChecksForUpdates());

    if (const auto started = updater->start(); !started) {
        static const QLoggingCategory log("com.orvane.Vistrel");
        qCWarning(log).noquote() << "Vistrel updates:" << started.error().description;
    }
}

void UpdateService::setCanCheck(bool possible) {
    checkPossible = possible;
    Q_EMIT canCheckChanged();
}

void UpdateService::setAutomaticallyChecks(bool checks) {
    automatic = checks;
    // Only a difference goes to the updater: what came from there is not written back.
    if (updater && updater->automaticallyChecksForUpdates() != checks)
        updater->setAutomaticallyChecksForUpdates(checks);
    Q_EMIT automaticallyChecksChanged();
}

void UpdateService::checkForUpdates() {
    if (!updater || !checkPossible)
        return;
    if (onActivate)
        onActivate();
    updater->checkForUpdates();
}

QString UpdateService::updateHost() const {
    return QUrl(configuration.feedAddress).host();
}

void UpdateService::relaunch(const QString& program) {
    if (!UpdateRelaunch::startAfterExit(program))
        return;
    if (onQuit)
        onQuit();
    else
        QCoreApplication::quit();
}

#include "VistrelPlatform/Update/UpdaterConfiguration.h"

#include "VistrelPlatform/System/ApplicationBundle.h"
#include "VistrelPlatform/System/MachineFacts.h"
#include "VistrelPlatform/System/Paths.h"

#include <QCoreApplication>
#include <QDir>

namespace {

/// The AppImage that the program runs from. Its variable is inherited by whatever it starts, so it only
/// counts when the program lies in the mounted image.
QString runningAppImage(const QString& executable) {
    const QString mounted = qEnvironmentVariable("APPDIR");
    const bool inside =
        !mounted.isEmpty() && executable.startsWith(QDir::cleanPath(mounted) + QLatin1Char('/'));
    return inside ? qEnvironmentVariable("APPIMAGE") : QString();
}

} // namespace

UpdaterConfiguration UpdaterConfiguration::ofRunningProgram(NetworkSource network) {
    const ApplicationBundle bundle;
    UpdaterConfiguration configuration;
    configuration.network = std::move(network);
    configuration.installed = bundle.isInstalled();
    configuration.feedAddress = bundle.string(ApplicationBundle::feedURLKey).value_or(QString());
    configuration.publicKey = bundle.string(ApplicationBundle::publicEDKeyKey).value_or(QString());
    configuration.version = bundle.string(ApplicationBundle::shortVersionKey).value_or(QString());
    configuration.systemVersion = MachineFacts::current().systemVersion;
    configuration.executable = QCoreApplication::applicationFilePath();
    configuration.appImage = runningAppImage(configuration.executable);
    configuration.downloadFolder = Paths::cache() + QStringLiteral("/Update");
    return configuration;
}

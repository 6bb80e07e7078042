#include "VistrelPlatform/Update/UpdateInstallation.h"

#include "VistrelPlatform/Update/AppImageReplacement.h"
#include "VistrelPlatform/Update/PrefixReplacement.h"
#include "VistrelPlatform/Update/UpdateError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Places that belong to package managers, even for a user who may write there.
bool isSystemPlace(const QString& path) {
    static const QStringList places{QStringLiteral("/usr/"),  QStringLiteral("/bin/"),
                                    QStringLiteral("/nix/"),  QStringLiteral("/gnu/"),
                                    QStringLiteral("/snap/"), QStringLiteral("/app/")};
    for (const QString& place : places) {
        if (path.startsWith(place))
            return true;
    }
    return false;
}

bool belongsToUser(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    struct stat info {};
    return ::stat(name.constData(), &info) == 0 && info.st_uid == ::geteuid() &&
           ::access(name.constData(), W_OK) == 0;
}

/// Replacing something takes its own folder and the one around it.
bool isReplaceable(const QString& path) {
    return !isSystemPlace(path + QLatin1Char('/')) && belongsToUser(path) &&
           belongsToUser(QFileInfo(path).path());
}

} // namespace

UpdateInstallation UpdateInstallation::detect(const QString& executable, const QString& appImage) {
    if (!appImage.isEmpty()) {
        const QString file = QFileInfo(appImage).canonicalFilePath();
        const bool ours = !file.isEmpty() && QFileInfo(file).isFile() && isReplaceable(file);
        return ours ? UpdateInstallation{Kind::appImage, file} : UpdateInstallation{};
    }
    const QString program = QFileInfo(executable).canonicalFilePath();
    const QString suffix = QStringLiteral("/bin/vistrel");
    if (!program.endsWith(suffix))
        return {};
    const QString prefix = program.chopped(suffix.size());
    const bool ours = prefix.count(QLatin1Char('/')) > 1 && isReplaceable(prefix) && belongsToUser(program) &&
                      PrefixReplacement::holdsNothingElse(prefix);
    return ours ? UpdateInstallation{Kind::privatePrefix, prefix} : UpdateInstallation{};
}

Result<QString> UpdateInstallation::replace(const QString& archive, const UpdateVersion& version) const {
    switch (kind) {
    case Kind::appImage:
        return AppImageReplacement::replace(path, archive, version);
    case Kind::privatePrefix:
        return PrefixReplacement::replace(path, archive, version);
    case Kind::managed:
        break;
    }
    return tl::unexpected(UpdateError::make(
        UpdateError::installationFailed,
        QStringLiteral("This copy of Vistrel is looked after by your system’s package manager.")));
}

#include "VistrelPlatform/Update/ReplacementFiles.h"

#include "VistrelPlatform/System/ApplicationBundle.h"
#include "VistrelPlatform/Update/UpdateError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int helperTimeout = 300000;

QString stagingPrefix(const QString& path) {
    return QLatin1Char('.') + QFileInfo(path).fileName() + QStringLiteral(".update-");
}

Result<void> flushWith(int (*flushDescriptor)(int), const QString& path) {
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return tl::unexpected(ReplacementFiles::systemFailure(path));
    const bool flushed = flushDescriptor(descriptor) == 0;
    const Error error = ReplacementFiles::systemFailure(path);
    ::close(descriptor);
    if (!flushed)
        return tl::unexpected(error);
    return {};
}

} // namespace

Error ReplacementFiles::failure(const QString& description) {
    return UpdateError::make(UpdateError::installationFailed, description);
}

Error ReplacementFiles::systemFailure(const QString& path) {
    return failure(QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno))));
}

Result<void> ReplacementFiles::run(const QString& program, const QStringList& arguments,
                                   const QString& folder) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("TAR_OPTIONS"));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForFinished(helperTimeout)) {
        process.kill();
        process.waitForFinished();
        return tl::unexpected(failure(QStringLiteral("%1: %2").arg(program, process.errorString())));
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        const QString message = QString::fromLocal8Bit(process.readAllStandardError().left(500)).trimmed();
        return tl::unexpected(
            failure(QStringLiteral("The update cannot be unpacked. %1").arg(message).trimmed()));
    }
    return {};
}

Result<void> ReplacementFiles::checkVersion(const QString& path, const UpdateVersion& version) {
    QFile file(path);
    QByteArray text;
    if (file.open(QIODevice::ReadOnly))
        text = file.read(64 * 1024);
    const QJsonObject information = QJsonDocument::fromJson(text).object();
    const auto held = UpdateVersion::parse(information.value(ApplicationBundle::shortVersionKey).toString());
    // Otherwise an old archive, signed long ago, could be passed off as a new version.
    if (!held || *held != version)
        return tl::unexpected(
            failure(QStringLiteral("The update does not hold version %1. It was not installed.")
                        .arg(version.text())));
    return {};
}

Result<void> ReplacementFiles::flush(const QString& path) {
    return flushWith(::fsync, path);
}

Result<void> ReplacementFiles::flushFileSystem(const QString& path) {
    return flushWith(::syncfs, path);
}

Result<QString> ReplacementFiles::stagingFolder(const QString& path) {
    QByteArray name = QFile::encodeName(QFileInfo(path).path() + QLatin1Char('/') + stagingPrefix(path) +
                                        QStringLiteral("XXXXXX"));
    if (::mkdtemp(name.data()) == nullptr)
        return tl::unexpected(systemFailure(QFileInfo(path).path()));
    return QFile::decodeName(name);
}

void ReplacementFiles::removeStagingFolders(const QString& path) {
    const QDir folder(QFileInfo(path).path());
    const QStringList names =
        folder.entryList({stagingPrefix(path) + QStringLiteral("??????")},
                         QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot);
    for (const QString& name : names)
        QDir(folder.filePath(name)).removeRecursively();
}

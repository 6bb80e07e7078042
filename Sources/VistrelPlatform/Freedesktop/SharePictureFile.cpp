#include "VistrelPlatform/Freedesktop/SharePictureFile.h"

#include "VistrelPlatform/System/Paths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString picturesFolder = QStringLiteral("/Share");

Error systemError(const QString& path) {
    const int code = errno;
    return {ErrorDomain::system, code,
            QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(std::strerror(code)))};
}

/// A folder of ours that nobody else can enter; one that is there already must be no less private.
Result<void> makePrivateFolder(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), 0700) == 0)
        return {};
    if (errno != EEXIST)
        return tl::unexpected(systemError(path));
    struct stat info {};
    if (::lstat(name.constData(), &info) != 0)
        return tl::unexpected(systemError(path));
    if (!S_ISDIR(info.st_mode) || info.st_uid != ::getuid()) {
        errno = EPERM;
        return tl::unexpected(systemError(path));
    }
    if ((info.st_mode & 0077) != 0 && ::chmod(name.constData(), 0700) != 0)
        return tl::unexpected(systemError(path));
    return {};
}

Result<void> writeAll(const QString& path, const QByteArray& bytes) {
    const QByteArray name = QFile::encodeName(path);
    const int file = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file < 0)
        return tl::unexpected(systemError(path));
    const char* next = bytes.constData();
    qint64 left = bytes.size();
    while (left > 0) {
        const ssize_t written = ::write(file, next, static_cast<size_t>(left));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            break;
        next += written;
        left -= written;
    }
    if (left > 0) {
        const Error error = systemError(path);
        ::close(file);
        return tl::unexpected(error);
    }
    if (::close(file) != 0)
        return tl::unexpected(systemError(path));
    return {};
}

} // namespace

Result<std::shared_ptr<SharePictureFile>> SharePictureFile::write(const SharedPicture& picture) {
    const auto runtime = Paths::runtime();
    if (!runtime)
        return tl::unexpected(runtime.error());
    const QString folder = *runtime + picturesFolder;
    if (const auto made = makePrivateFolder(folder); !made)
        return tl::unexpected(made.error());
    QByteArray own = QFile::encodeName(folder + QStringLiteral("/XXXXXX"));
    if (::mkdtemp(own.data()) == nullptr)
        return tl::unexpected(systemError(folder));
    // From here on the destructor tidies up, whatever fails.
    const QString name = QFileInfo(picture.fileName).fileName();
    std::shared_ptr<SharePictureFile> file(
        new SharePictureFile(QFile::decodeName(own) + QLatin1Char('/') + name));
    if (const auto written = writeAll(file->path(), picture.png); !written)
        return tl::unexpected(written.error());
    return file;
}

void SharePictureFile::removeLeftovers() {
    const auto runtime = Paths::runtime();
    if (!runtime)
        return;
    const QFileInfo folder(*runtime + picturesFolder);
    if (folder.isDir() && !folder.isSymLink())
        QDir(folder.filePath()).removeRecursively();
}

SharePictureFile::~SharePictureFile() {
    if (kept)
        return;
    QFile::remove(filePath);
    ::rmdir(QFile::encodeName(QFileInfo(filePath).path()).constData());
}

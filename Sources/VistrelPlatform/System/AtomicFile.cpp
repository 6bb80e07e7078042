#include "VistrelPlatform/System/AtomicFile.h"

#include "VistrelPlatform/System/FileDescriptor.h"
#include "VistrelPlatform/System/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr int nameAttempts = 16;

QString temporaryPrefix(const QString& path) {
    return QStringLiteral(".%1.vistrel-").arg(QFileInfo(path).fileName());
}

/// A new file beside `path`; its name is left in `name`.
FileDescriptor openTemporary(const QString& path, mode_t mode, QByteArray& name) {
    const QString prefix = QFileInfo(path).path() + u'/' + temporaryPrefix(path);
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        name = QFile::encodeName(prefix + QString::number(QRandomGenerator::system()->generate64(), 36));
        FileDescriptor file(::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        if (file.isOpen() || errno != EEXIST)
            return file;
    }
    return FileDescriptor();
}

bool writeAll(int file, const QByteArray& bytes) {
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count =
            ::write(file, bytes.constData() + written, static_cast<size_t>(bytes.size() - written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        written += count;
    }
    return true;
}

/// The rename itself is on the disk only when the folder is; some file systems cannot, and need not.
void synchronizeFolder(const QString& path) {
    const FileDescriptor folder(
        ::open(QFile::encodeName(QFileInfo(path).path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen())
        ::fsync(folder.get());
}

} // namespace

Result<void> writeAtomically(const QString& path, const QByteArray& bytes, std::optional<mode_t> mode) {
    const QByteArray target = QFile::encodeName(path);
    struct stat existing {};
    if (!mode && ::stat(target.constData(), &existing) == 0 && S_ISREG(existing.st_mode))
        mode = existing.st_mode & 07777;
    QByteArray temporary;
    const FileDescriptor file = openTemporary(path, mode ? 0600 : 0666, temporary);
    if (!file.isOpen())
        return tl::unexpected(Files::systemError(errno));
    const bool complete = (!mode || ::fchmod(file.get(), *mode) == 0) && writeAll(file.get(), bytes) &&
                          ::fsync(file.get()) == 0 &&
                          ::rename(temporary.constData(), target.constData()) == 0;
    if (!complete) {
        const int code = errno;
        ::unlink(temporary.constData());
        return tl::unexpected(Files::systemError(code));
    }
    synchronizeFolder(path);
    return {};
}

void removeInterruptedWrites(const QString& path) {
    QDir folder = QFileInfo(path).dir();
    const QString prefix = temporaryPrefix(path);
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        if (name.startsWith(prefix))
            folder.remove(name);
    }
}

#include "VistrelPlatform/System/Files.h"

#include "VistrelPlatform/System/FileDescriptor.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

Error Files::systemError(int code) {
    return {ErrorDomain::system, code, qt_error_string(code)};
}

Result<void> Files::createFolder(const QString& path, mode_t mode) {
    const QByteArray name = QFile::encodeName(QDir::cleanPath(path));
    struct stat facts {};
    if (::stat(name.constData(), &facts) == 0) {
        if (S_ISDIR(facts.st_mode))
            return {};
        return tl::unexpected(systemError(ENOTDIR));
    }
    const QString parent = QDir::cleanPath(path + QStringLiteral("/.."));
    if (parent != QDir::cleanPath(path)) {
        if (Result<void> made = createFolder(parent, mode); !made)
            return made;
    }
    // Another process may have made it in between.
    if (::mkdir(name.constData(), mode) != 0 && errno != EEXIST)
        return tl::unexpected(systemError(errno));
    return {};
}

Result<QByteArray> Files::read(const QString& path, qint64 limit) {
    const FileDescriptor file(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat facts {};
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0)
        return tl::unexpected(systemError(errno));
    if (!S_ISREG(facts.st_mode))
        return tl::unexpected(systemError(S_ISDIR(facts.st_mode) ? EISDIR : EINVAL));
    if (facts.st_size > limit)
        return tl::unexpected(systemError(EFBIG));
    QByteArray bytes;
    char block[65536];
    for (;;) {
        const ssize_t count = ::read(file.get(), block, sizeof block);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return tl::unexpected(systemError(errno));
        if (count == 0)
            return bytes;
        bytes.append(block, count);
        // It may have grown since it was measured.
        if (bytes.size() > limit)
            return tl::unexpected(systemError(EFBIG));
    }
}

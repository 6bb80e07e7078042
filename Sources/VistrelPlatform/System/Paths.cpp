#include "VistrelPlatform/System/Paths.h"

#include "VistrelPlatform/System/Files.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

const QString folderName = QStringLiteral("Vistrel");

/// A relative path in these variables has no meaning and counts as unset.
QString absolutePath(const char* variable) {
    const QString path = QFile::decodeName(qgetenv(variable));
    return path.startsWith(u'/') ? QDir::cleanPath(path) : QString();
}

QString homeOfAccount() {
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr)
        return {};
    return QFile::decodeName(entry.pw_dir);
}

QString home() {
    QString path = absolutePath("HOME");
    if (path.isEmpty())
        path = homeOfAccount();
    VISTREL_PRECONDITION(!path.isEmpty(), "the user has no home folder");
    return path;
}

QString base(const char* variable, const QString& belowHome) {
    const QString path = absolutePath(variable);
    return path.isEmpty() ? home() + u'/' + belowHome : path;
}

} // namespace

QString Paths::data() {
    return base("XDG_DATA_HOME", QStringLiteral(".local/share")) + u'/' + folderName;
}

QString Paths::configHome() {
    return base("XDG_CONFIG_HOME", QStringLiteral(".config"));
}

QString Paths::config() {
    return configHome() + u'/' + folderName;
}

QString Paths::cache() {
    return base("XDG_CACHE_HOME", QStringLiteral(".cache")) + u'/' + folderName;
}

Result<QString> Paths::runtime() {
    const QString session = absolutePath("XDG_RUNTIME_DIR");
    const QString path = session.isEmpty()
                             ? QDir::tempPath() + u'/' + folderName + u'-' + QString::number(::getuid())
                             : session + u'/' + folderName;
    if (const Result<void> made = Files::createFolder(path, 0700); !made)
        return tl::unexpected(made.error());
    struct stat facts {};
    if (::lstat(QFile::encodeName(path).constData(), &facts) != 0)
        return tl::unexpected(Files::systemError(errno));
    // In a shared temporary folder somebody else may have been there first.
    if (!S_ISDIR(facts.st_mode) || facts.st_uid != ::getuid() || (facts.st_mode & 077) != 0)
        return tl::unexpected(Files::systemError(EACCES));
    return path;
}

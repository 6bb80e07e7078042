#include "VistrelPlatform/Update/PrefixReplacement.h"

#include "VistrelPlatform/Update/ReplacementFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

const QString program = QStringLiteral("/bin/vistrel");
const QString information = QStringLiteral("/share/vistrel/Info.json");
const QString fileList = QStringLiteral("/share/vistrel/Files.txt");

Result<void> unpack(const QString& archive, const QString& folder, const UpdateVersion& version) {
    auto unpacked =
        ReplacementFiles::run(QStringLiteral("tar"),
                              {QStringLiteral("--extract"), QStringLiteral("--strip-components=1"),
                               QStringLiteral("--no-same-owner"), QStringLiteral("--file"), archive},
                              folder);
    if (!unpacked)
        return unpacked;
    if (auto checked = ReplacementFiles::checkVersion(folder + information, version); !checked)
        return checked;
    // Without its list the new tree could never be updated itself.
    if (!QFileInfo(folder + program).isExecutable() || !PrefixReplacement::holdsNothingElse(folder))
        return tl::unexpected(
            ReplacementFiles::failure(QStringLiteral("The update is not a complete installation.")));
    return ReplacementFiles::flushFileSystem(folder);
}

/// In one step where the file system can; otherwise in two that are undone when the second fails.
Result<void> exchange(const QByteArray& staged, const QByteArray& prefix) {
    if (::renameat2(AT_FDCWD, staged.constData(), AT_FDCWD, prefix.constData(), RENAME_EXCHANGE) == 0)
        return {};
    if (errno != EINVAL && errno != ENOSYS)
        return tl::unexpected(ReplacementFiles::systemFailure(QFile::decodeName(prefix)));
    const QByteArray aside = staged + "-old";
    if (std::rename(prefix.constData(), aside.constData()) != 0)
        return tl::unexpected(ReplacementFiles::systemFailure(QFile::decodeName(prefix)));
    if (std::rename(staged.constData(), prefix.constData()) != 0) {
        const Error error = ReplacementFiles::systemFailure(QFile::decodeName(prefix));
        std::rename(aside.constData(), prefix.constData());
        return tl::unexpected(error);
    }
    std::rename(aside.constData(), staged.constData());
    return {};
}

} // namespace

bool PrefixReplacement::holdsNothingElse(const QString& prefix) {
    QFile list(prefix + fileList);
    if (!list.open(QIODevice::ReadOnly))
        return false;
    QSet<QString> installed;
    for (const QByteArray& line : list.readAll().split('\n'))
        installed.insert(QString::fromUtf8(line));
    const QDir root(prefix);
    QDirIterator entries(prefix, QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QFileInfo entry(entries.next());
        const bool isFolder = entry.isDir() && !entry.isSymLink();
        if (!isFolder && !installed.contains(root.relativeFilePath(entry.filePath())))
            return false;
    }
    return installed.contains(program.mid(1));
}

Result<QString> PrefixReplacement::replace(const QString& prefix, const QString& archive,
                                           const UpdateVersion& version) {
    ReplacementFiles::removeStagingFolders(prefix);
    const auto folder = ReplacementFiles::stagingFolder(prefix);
    if (!folder)
        return tl::unexpected(folder.error());
    const auto discard = [&](const Error& error) {
        QDir(*folder).removeRecursively();
        return tl::unexpected(error);
    };

    if (const auto unpacked = unpack(archive, *folder, version); !unpacked)
        return discard(unpacked.error());
    if (!QFile::setPermissions(*folder, QFile::permissions(prefix)))
        return discard(ReplacementFiles::systemFailure(*folder));
    if (const auto exchanged = exchange(QFile::encodeName(*folder), QFile::encodeName(prefix)); !exchanged)
        return discard(exchanged.error());
    QDir(*folder).removeRecursively(); // now the former installation
    (void)ReplacementFiles::flush(QFileInfo(prefix).path());
    return prefix + program;
}

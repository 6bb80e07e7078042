#include "VistrelPlatform/Update/UpdateDownloadFile.h"

#include "VistrelPlatform/Result.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

std::unique_ptr<QTemporaryFile> UpdateDownloadFile::create(const QString& folder) {
    VISTREL_PRECONDITION(QDir::isAbsolutePath(folder), "the download folder must be named in full");
    const QFileInfo present(folder);
    if (present.isSymLink())
        return nullptr;
    if (present.isDir())
        QDir(folder).removeRecursively(); // what an interrupted download left
    if (!QDir().mkpath(folder))
        return nullptr;
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    auto file = std::make_unique<QTemporaryFile>(folder + QStringLiteral("/XXXXXX"));
    if (!file->open())
        return nullptr;
    return file;
}

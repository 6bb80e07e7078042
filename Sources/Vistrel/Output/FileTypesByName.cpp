#include "Output/FileTypesByName.h"

#include <QFileInfo>
#include <QMimeDatabase>

namespace {
QMimeType mimeType(const QFileInfo& file) {
    return QMimeDatabase().mimeTypeForFile(file, QMimeDatabase::MatchExtension);
}
} // namespace

FileTypesByName::FileTypesByName() {
    setOptions(DontUseCustomDirectoryIcons);
}

QIcon FileTypesByName::icon(const QFileInfo& file) const {
    if (file.isDir())
        return QFileIconProvider::icon(file);
    const QMimeType type = mimeType(file);
    const QIcon named = QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName()));
    return named.isNull() ? icon(File) : named;
}

QString FileTypesByName::type(const QFileInfo& file) const {
    return file.isDir() ? QFileIconProvider::type(file) : mimeType(file).comment();
}

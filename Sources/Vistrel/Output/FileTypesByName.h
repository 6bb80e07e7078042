#pragma once

#include <QFileIconProvider>

/// Types and icons of files by their names alone. The toolkit's own looks into every file, on the main thread
/// too, and waits for ever on one that gives nothing, such as a device or a file of a lost server.
class FileTypesByName : public QFileIconProvider {
public:
    FileTypesByName();

    QIcon icon(const QFileInfo& file) const override;
    QIcon icon(IconType type) const override { return QFileIconProvider::icon(type); }
    QString type(const QFileInfo& file) const override;
};

#pragma once

#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/ShareServices.h"

#include <memory>

/// A picture on its way to another program: a file of mode 0600, alone in a folder of mode 0700 under the
/// user's runtime directory. Removed with its last owner. Any thread.
class SharePictureFile {
public:
    static Result<std::shared_ptr<SharePictureFile>> write(const SharedPicture& picture);
    /// Removes what earlier runs left. Nothing shared by this process may be in use.
    static void removeLeftovers();

    SharePictureFile(const SharePictureFile&) = delete;
    SharePictureFile& operator=(const SharePictureFile&) = delete;
    ~SharePictureFile();

    const QString& path() const { return filePath; }
    /// Another program may still read the file after this process: it stays until the next launch.
    void keepUntilNextLaunch() { kept = true; }

private:
    explicit SharePictureFile(QString path) : filePath(std::move(path)) {}

    QString filePath;
    bool kept = false;
};

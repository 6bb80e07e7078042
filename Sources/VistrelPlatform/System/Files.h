#pragma once

#include "VistrelPlatform/Result.h"

#include <QByteArray>
#include <QString>

#include <sys/types.h>

/// Small file operations whose failures are values. Any thread.
namespace Files {

/// An errno value in the domain `ErrorDomain::system`, with the system's own words.
Error systemError(int code);

/// Creates the folder and its missing parents, each with `mode`; one that is there is left as it is.
Result<void> createFolder(const QString& path, mode_t mode = 0700);

/// A regular file of at most `limit` bytes. Never blocks on a pipe or a device.
Result<QByteArray> read(const QString& path, qint64 limit);

} // namespace Files

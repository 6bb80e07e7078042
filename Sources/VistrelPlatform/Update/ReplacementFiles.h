#pragma once

#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/Update/UpdateVersion.h"

#include <QStringList>

/// Steps that both ways of replacing an installation share. Any thread; they wait for the disk and for
/// the helper programs they run.
namespace ReplacementFiles {

Error failure(const QString& description);
/// The error with the system's text for errno.
Error systemFailure(const QString& path);

/// Runs a program in `folder` to its end; fails unless it succeeds in time.
Result<void> run(const QString& program, const QStringList& arguments, const QString& folder);
/// Whether the information file at `path` names exactly `version`.
Result<void> checkVersion(const QString& path, const UpdateVersion& version);
/// Waits until a file or folder, or everything on its file system, is on the disk.
Result<void> flush(const QString& path);
Result<void> flushFileSystem(const QString& path);
/// An empty folder beside `path` that an interrupted replacement of `path` is recognised by.
Result<QString> stagingFolder(const QString& path);
/// Removes what interrupted replacements of `path` left.
void removeStagingFolders(const QString& path);

} // namespace ReplacementFiles

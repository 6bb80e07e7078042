#pragma once

#include "VistrelPlatform/Result.h"

#include <QString>

/// Where this user's files live, read from the environment at each call. Any thread. Folders are
/// named, not created, except the runtime folder.
namespace Paths {

/// "Vistrel" in `$XDG_DATA_HOME` (`~/.local/share`): journal, timing report.
QString data();
/// "Vistrel" in `$XDG_CONFIG_HOME` (`~/.config`): the user's choices.
QString config();
/// "Vistrel" in `$XDG_CACHE_HOME` (`~/.cache`).
QString cache();
/// `$XDG_CONFIG_HOME` itself, for files that others read (autostart entries, MIME choices).
QString configHome();
/// "Vistrel" in `$XDG_RUNTIME_DIR`, or in the temporary folder where the session has none. Created when
/// missing; an error unless it is a folder of this user that nobody else can enter.
Result<QString> runtime();

} // namespace Paths

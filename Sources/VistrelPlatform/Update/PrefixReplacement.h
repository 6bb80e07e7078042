#pragma once

#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/Update/UpdateVersion.h"

/// Replaces an installed tree that has a folder to itself. Any thread.
namespace PrefixReplacement {

/// Whether every file under `prefix` stands in the list that its installation wrote. A folder that other
/// programs share must never be exchanged.
bool holdsNothingElse(const QString& prefix);

/// Exchanges the folder for the unpacked archive (a compressed tar file with one folder at its top).
/// Returns the program in it, which is `version` from then on.
Result<QString> replace(const QString& prefix, const QString& archive, const UpdateVersion& version);

} // namespace PrefixReplacement

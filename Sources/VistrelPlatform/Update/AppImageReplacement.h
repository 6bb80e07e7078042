#pragma once

#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/Update/UpdateVersion.h"

/// Replaces an AppImage file. Any thread.
namespace AppImageReplacement {

/// Returns the path of the AppImage, which holds `version` from then on.
Result<QString> replace(const QString& appImage, const QString& archive, const UpdateVersion& version);

} // namespace AppImageReplacement

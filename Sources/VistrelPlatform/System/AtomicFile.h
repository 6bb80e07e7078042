#pragma once

#include "VistrelPlatform/Result.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/types.h>

/// Replaces a file as a whole: a temporary file beside it is written, synchronized and renamed over it,
/// so a reader (or a crash) finds the old content or the new, never a part. Any thread.
/// Without `mode` a replaced file keeps its permissions and a new one gets the user's usual ones.
Result<void> writeAtomically(const QString& path, const QByteArray& bytes,
                             std::optional<mode_t> mode = std::nullopt);

/// Removes what interrupted writes to `path` left beside it. Not while another write may be under way.
void removeInterruptedWrites(const QString& path);

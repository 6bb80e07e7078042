#pragma once

#include "Settings/ScreenshotSaveFormat.h"
#include "VistrelPlatform/Result.h"

#include <QImage>
#include <QString>

/// Encodes the picture and puts it at `path` in one step: after a failure an older file is untouched and
/// nothing else is left behind. A failed write carries the system's own description.
Result<void> saveImage(const QString& path, ScreenshotSaveFormat format, const QImage& image);

#pragma once

#include <QString>

/// The format of saved files; stored and offered by its raw string.
enum class ScreenshotSaveFormat { png, jpg };

/// "png" or "jpg", which is also the file extension.
QString rawValue(ScreenshotSaveFormat format);

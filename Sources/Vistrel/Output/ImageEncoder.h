#pragma once

#include "Settings/ScreenshotSaveFormat.h"
#include "VistrelPlatform/Result.h"

#include <QByteArray>
#include <QImage>

/// Turns an exported picture into the bytes of a file. Any thread. Pixels are written as sRGB; a picture
/// in another colour space or pixel format is converted first.
namespace ImageEncoder {

/// The domain of every failure here; the code tells the format (0 PNG, 1 JPEG), the description is
/// technical. Whoever shows it has better words for the user.
inline const QString errorDomain = QStringLiteral("com.orvane.Vistrel.encoding");

/// PNG loses nothing; JPEG is at 95 % quality with full colour resolution, flattened onto white.
Result<QByteArray> encode(ScreenshotSaveFormat format, const QImage& image);

} // namespace ImageEncoder

#pragma once

#include "VistrelPlatform/ScreenCapturer.h"

#include <QImage>

/// Area means of `Format_RGB32` pictures. Any thread.
namespace AreaScaler {

/// Every pixel is the mean of the source area it covers, rounded to the nearest level. Halves are exact
/// means of 2 × 2 pixels.
QImage scaled(const QImage& source, PixelSize size);

} // namespace AreaScaler

#pragma once

#include "VistrelPlatform/System/PixelBuffer.h"

#include <QImage>

/// The picture in a 4:2:0 buffer (video range, BT.709) as 8-bit RGBA in sRGB; null when the buffer has
/// other planes or there is no memory.
QImage imageFromPixelBuffer(const PixelBuffer& buffer);

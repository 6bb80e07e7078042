#pragma once

#include "VistrelPlatform/Result.h"

#include <QByteArray>
#include <QImage>

namespace ImageEncoder {

/// 95 % quality, every pixel with its own colour. What can be seen through becomes white.
Result<QByteArray> encodeJPEG(const QImage& image);

} // namespace ImageEncoder

#pragma once

#include "VistrelPlatform/Result.h"

#include <QByteArray>
#include <QImage>

namespace ImageEncoder {

/// Written for speed: a 4K capture goes to the clipboard while the user waits for the overlay to close.
/// 8 bits per sample, RGB when every pixel is opaque, RGBA otherwise.
Result<QByteArray> encodePNG(const QImage& image);

} // namespace ImageEncoder

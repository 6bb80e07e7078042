#pragma once

#include "Desktop/Fixture/Noise.h"

#include <QPainter>

/// Comparable whatever stands in the fourth byte.
inline QImage opaque(const QImage& image) {
    return image.convertToFormat(QImage::Format_RGB888).convertToFormat(QImage::Format_RGB32);
}

/// As a painter lays the haze over a picture.
inline QImage hazed(const QImage& image) {
    QImage result = opaque(image);
    QPainter(&result).fillRect(result.rect(), QColor::fromRgbF(0.3F, 0.3F, 0.3F, 0.4F));
    return result;
}

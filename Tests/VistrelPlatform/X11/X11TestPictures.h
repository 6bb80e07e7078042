#pragma once

#include <QImage>
#include <QPainter>

/// Every pixel differs from its neighbours, and `seed` from other pictures.
inline QImage noise(QSize size, std::uint32_t seed) {
    QImage image(size, QImage::Format_RGB32);
    std::uint32_t state = seed * 2654435761U + 1;
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            state = state * 1664525U + 1013904223U;
            row[x] = 0xFF000000U | state >> 8;
        }
    }
    return image;
}

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

#pragma once

#include <QImage>

#include <random>

/// A picture without two equal neighbours, so that a shift by one pixel shows; `seed` tells it from others.
inline QImage noise(QSize size, unsigned seed = 7) {
    std::mt19937 random(seed);
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = 0xFF000000 | static_cast<QRgb>(random());
    }
    return picture;
}

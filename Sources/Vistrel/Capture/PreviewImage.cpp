#include "Capture/PreviewImage.h"

#include "VistrelPlatform/Result.h"

#include <QPainter>

#include <cmath>

CapturedImage previewImage(const Screen& screen) {
    const Size points = screen.pointSize();
    const int width = static_cast<int>(std::lround(points.width * screen.scale));
    const int height = static_cast<int>(std::lround(points.height * screen.scale));
    const int step = static_cast<int>(screen.scale * 80);
    VISTREL_PRECONDITION(step > 0, "the display's scale is too small for the preview grid");

    QImage image(width, height, QImage::Format_RGB32);
    image.fill(QColor::fromRgbF(0.12F, 0.18F, 0.25F));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor::fromRgbF(0.25F, 0.38F, 0.48F), screen.scale, Qt::SolidLine, Qt::FlatCap));
    for (int x = 0; x < width; x += step)
        painter.drawLine(x, 0, x, height);
    // Rows are counted from the bottom edge, as everything in the view is.
    for (int y = 0; y < height; y += step)
        painter.drawLine(0, height - y, width, height - y);
    painter.end();
    return {image, image, nullptr};
}

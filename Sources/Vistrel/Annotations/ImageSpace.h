#pragma once

#include "Annotations/ViewFlip.h"
#include "VistrelCore/CaptureGeometry.h"

#include <QRect>
#include <QTransform>

/// Where view points (y up) lie on the pixels of the captured picture (y down).
class ImageSpace {
public:
    ImageSpace(QSize imagePixels, const Rect& viewBounds)
        : imageSize(imagePixels), bounds(viewBounds.standardized()) {}

    double pixelsPerPointX() const { return imageSize.width() / bounds.width; }
    double pixelsPerPointY() const { return imageSize.height() / bounds.height; }
    QSize size() const { return imageSize; }
    QRect wholeImage() const { return {QPoint(), imageSize}; }

    /// The pixels that an area of the view touches.
    QRect pixels(const Rect& area) const {
        const Rect p = CaptureGeometry::pixelRect(area.offsetBy({-bounds.x, -bounds.y}), bounds.size(),
                                                  {double(imageSize.width()), double(imageSize.height())});
        return toQRectF(p).toRect();
    }
    /// The area of the view that pixels cover.
    Rect view(const QRect& pixels) const {
        return {bounds.x + pixels.x() / pixelsPerPointX(),
                bounds.maxY() - (pixels.y() + pixels.height()) / pixelsPerPointY(),
                pixels.width() / pixelsPerPointX(), pixels.height() / pixelsPerPointY()};
    }
    /// Maps pixels to view points.
    QTransform toView() const {
        return {1 / pixelsPerPointX(), 0, 0, -1 / pixelsPerPointY(), bounds.x, bounds.maxY()};
    }
    /// Maps view points to pixels.
    QTransform toPixels() const {
        return {pixelsPerPointX(),
                0,
                0,
                -pixelsPerPointY(),
                -bounds.x * pixelsPerPointX(),
                bounds.maxY() * pixelsPerPointY()};
    }

    friend bool operator==(const ImageSpace&, const ImageSpace&) = default;

private:
    QSize imageSize;
    Rect bounds;
};

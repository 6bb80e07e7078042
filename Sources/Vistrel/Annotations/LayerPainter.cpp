#include "Annotations/LayerPainter.h"

#include "Annotations/AnnotationTextLayout.h"
#include "Annotations/PolylinePainter.h"
#include "Annotations/ViewFlip.h"

#include <QPainter>

#include <numbers>

namespace {

double deviceScale(const QPainter& painter) {
    return std::sqrt(std::abs(painter.deviceTransform().determinant()));
}

std::vector<Point> rectangleOutline(const Rect& r) {
    return {{r.minX(), r.minY()},
            {r.maxX(), r.minY()},
            {r.maxX(), r.maxY()},
            {r.minX(), r.maxY()},
            {r.minX(), r.minY()}};
}

std::vector<Point> ellipseOutline(const Rect& r, double scale) {
    constexpr double sagitta = 0.02; // pixels
    const double a = r.width / 2;
    const double b = r.height / 2;
    const double parts =
        std::max(16.0, std::ceil(std::numbers::pi * std::sqrt(std::max(a, b) * scale / (2 * sagitta))));
    std::vector<Point> points;
    for (double part = 0; part <= parts; ++part) {
        const double angle = 2 * std::numbers::pi * part / parts;
        points.push_back({r.midX() + a * std::cos(angle), r.midY() + b * std::sin(angle)});
    }
    return points;
}

/// The radius of its sharpest bend; a rectangle's corners are rounded by the pen, whatever its size.
double sharpestBend(AnnotationTool tool, const Rect& r) {
    const double shorter = std::min(r.width, r.height) / 2;
    if (tool == AnnotationTool::rectangle)
        return shorter;
    const double longer = std::max(r.width, r.height) / 2;
    return longer > 0 ? shorter * shorter / longer : 0;
}

/// The outline of the geometry's bounds: a rectangle or the ellipse inscribed in it.
void paintOutline(const EditorAnnotation& annotation, QPainter& painter, const QPen& pen,
                  const Rect& visible) {
    if (annotation.points.empty())
        return;
    const Rect bounds = annotation.geometryBounds();
    const bool isRectangle = annotation.tool == AnnotationTool::rectangle;
    if (pen.widthF() / 2 <= sharpestBend(annotation.tool, bounds)) {
        QPainterPath shape;
        isRectangle ? shape.addRect(toQRectF(bounds)) : shape.addEllipse(toQRectF(bounds));
        painter.strokePath(shape, pen);
        return;
    }
    // The inner border of a line wider than the bend turns inside out, and would leave a hole.
    const std::vector<Point> outline =
        isRectangle ? rectangleOutline(bounds) : ellipseOutline(bounds, deviceScale(painter));
    PolylinePainter::paint(outline, pen.widthF(), pen.brush(), painter, visible);
}

} // namespace

QPen LayerPainter::roundPen(const QBrush& brush, double width, const QPainter& painter) {
    constexpr double justOverOnePixel = 1.001;
    const double scale = deviceScale(painter);
    const double thinnest = scale > 0 ? justOverOnePixel / scale : width;
    return {brush, std::max(width, thinnest), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void LayerPainter::stroke(const EditorAnnotation& annotation, QPainter& painter, const QPen& pen,
                          const Rect& visible) {
    if (annotation.points.empty())
        return;
    if (AnnotationTools::isFreehand(annotation.tool))
        return PolylinePainter::paint(annotation.points, annotation.width, pen.brush(), painter, visible);
    if (annotation.isDot()) {
        // A path drops steps of no length, yet a mere press leaves a dot.
        painter.setPen(pen);
        painter.drawPoint(toQPointF(annotation.points.front()));
        return;
    }
    painter.strokePath(annotation.path(), pen);
}

void LayerPainter::paint(const EditorAnnotation& annotation, QPainter& painter, const Rect& visible) {
    constexpr float markerOpacity = 0.35F;
    QColor color = annotation.color;
    switch (annotation.tool) {
    case AnnotationTool::select:
    case AnnotationTool::blur:
    case AnnotationTool::pixelate:
        return;
    case AnnotationTool::text:
        AnnotationTextLayout::draw(annotation, painter);
        return;
    case AnnotationTool::marker:
        // One path is one area to fill, so a stroke that crosses itself gets no darker there.
        color.setAlphaF(color.alphaF() * markerOpacity);
        break;
    case AnnotationTool::rectangle:
    case AnnotationTool::ellipse:
        paintOutline(annotation, painter, roundPen(color, annotation.width, painter), visible);
        return;
    case AnnotationTool::pen:
    case AnnotationTool::arrow:
    case AnnotationTool::line:
        break;
    }
    stroke(annotation, painter, roundPen(color, annotation.width, painter), visible);
}

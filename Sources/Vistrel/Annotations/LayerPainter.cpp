#include "Annotations/LayerPainter.h"

#include "Annotations/AnnotationTextLayout.h"
#include "Annotations/PolylinePainter.h"
#include "Annotations/ViewFlip.h"

#include <QPainter>

namespace {

bool isDot(const EditorAnnotation& annotation) {
    return annotation.tool != AnnotationTool::arrow && annotation.geometryBounds().size() == Size{};
}

double deviceScale(const QPainter& painter) {
    return std::sqrt(std::abs(painter.deviceTransform().determinant()));
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
    if (isDot(annotation)) {
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
    case AnnotationTool::pen:
    case AnnotationTool::arrow:
    case AnnotationTool::line:
    case AnnotationTool::rectangle:
    case AnnotationTool::ellipse:
        break;
    }
    const QPen pen = roundPen(color, annotation.width, painter);
    QPainterPath shape;
    if (annotation.tool == AnnotationTool::rectangle)
        shape.addRect(toQRectF(annotation.geometryBounds()));
    else if (annotation.tool == AnnotationTool::ellipse)
        shape.addEllipse(toQRectF(annotation.geometryBounds()));
    if (shape.isEmpty())
        stroke(annotation, painter, pen, visible);
    else
        painter.strokePath(shape, pen);
}

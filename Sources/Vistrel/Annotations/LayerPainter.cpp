#include "Annotations/LayerPainter.h"

#include "Annotations/AnnotationTextLayout.h"
#include "Annotations/ViewFlip.h"

#include <QPainter>

namespace {

/// Room for smoothed edges, in points; a point is at least half a pixel on every display.
constexpr double edge = 2;

bool touches(const Rect& visible, Point a, Point b) {
    return std::max(a.x, b.x) >= visible.minX() && std::min(a.x, b.x) <= visible.maxX() &&
           std::max(a.y, b.y) >= visible.minY() && std::min(a.y, b.y) <= visible.maxY();
}

/// The pieces of a long polyline that come near `visible`. Where it is cut, the cut's round end lies
/// outside, so what is seen is exactly the uncut stroke.
QPainterPath visiblePath(const EditorAnnotation& annotation, double width, const Rect& visible) {
    constexpr std::size_t worthCutting = 32;
    const std::vector<Point>& points = annotation.points;
    if (points.size() < worthCutting)
        return annotation.path();
    const Rect near = visible.insetBy(-width / 2 - edge);
    QPainterPath path;
    bool connected = false;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const bool kept = touches(near, points[i - 1], points[i]);
        if (kept && !connected)
            path.moveTo(points[i - 1].x, points[i - 1].y);
        if (kept)
            path.lineTo(points[i].x, points[i].y);
        connected = kept;
    }
    return path;
}

bool isDot(const EditorAnnotation& annotation) {
    return annotation.tool != AnnotationTool::arrow && annotation.geometryBounds().size() == Size{};
}

/// Long strokes are painted piece by piece: the work per row of pixels grows with the square of what
/// crosses it. Pieces meet without a seam, because each paints exactly its part of the whole.
void strokeInPieces(const EditorAnnotation& annotation, QPainter& painter, const QPen& pen,
                    const Rect& visible) {
    constexpr double edgeOfPiece = 160;
    const std::optional<Rect> area =
        visible.intersection(annotation.geometryBounds().insetBy(-pen.widthF() / 2 - edge));
    if (!area)
        return;
    const auto columns = static_cast<int>(std::ceil(area->width / edgeOfPiece));
    const auto rows = static_cast<int>(std::ceil(area->height / edgeOfPiece));
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const Point corner = {area->x + column * edgeOfPiece, area->y + row * edgeOfPiece};
            const Rect piece = {corner.x, corner.y, std::min(edgeOfPiece, area->maxX() - corner.x),
                                std::min(edgeOfPiece, area->maxY() - corner.y)};
            const QPainterPath path = visiblePath(annotation, pen.widthF(), piece);
            if (path.isEmpty())
                continue;
            painter.save();
            painter.setClipRect(toQRectF(piece), Qt::IntersectClip);
            painter.strokePath(path, pen);
            painter.restore();
        }
    }
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
    if (isDot(annotation)) {
        // A path drops steps of no length, yet a mere press leaves a dot.
        painter.setPen(pen);
        painter.drawPoint(toQPointF(annotation.points.front()));
        return;
    }
    constexpr std::size_t longStroke = 256;
    if (annotation.points.size() > longStroke)
        strokeInPieces(annotation, painter, pen, visible);
    else
        painter.strokePath(visiblePath(annotation, pen.widthF(), visible), pen);
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

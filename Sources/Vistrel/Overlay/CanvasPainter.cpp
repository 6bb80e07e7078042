#include "Overlay/CanvasPainter.h"

#include "Overlay/OverlayExport.h"

#include <QPainter>
#include <QPainterPath>

namespace {

constexpr double handleRadius = 1; // points

long area(const QRect& rect) {
    return static_cast<long>(rect.width()) * rect.height();
}

/// A few rectangles that cover the region with little more than it: what lies far apart stays apart, so
/// that the strips of a frame do not make everything inside it be painted.
std::vector<QRect> pieces(const QRegion& region) {
    constexpr long worthAnotherPass = 4096;
    std::vector<QRect> result;
    for (QRect rect : region) {
        const auto joins = [&](const QRect& piece) {
            return area(piece.united(rect)) <= area(piece) + area(rect) + worthAnotherPass;
        };
        // A joined piece may reach others in turn.
        for (auto near = std::ranges::find_if(result, joins); near != result.end();
             near = std::ranges::find_if(result, joins)) {
            rect = rect.united(*near);
            result.erase(near);
        }
        result.push_back(rect);
    }
    return result;
}

} // namespace

CanvasPainter::CanvasPainter(QPainter& canvasPainter, const QRegion& damaged)
    : painter(canvasPainter), region(damaged) {}

QColor CanvasPainter::background() {
    return QColor::fromRgbF(0.3F, 0.3F, 0.3F);
}

QColor CanvasPainter::haze() {
    return QColor::fromRgbF(0.3F, 0.3F, 0.3F, 0.4F);
}

QRegion CanvasPainter::damage(const std::vector<Rect>& layers, const DecorationLayout& before,
                              const DecorationLayout& after, const CanvasSpace& space) {
    QRegion changed;
    // Half-covered pixels at the rim of what changed.
    constexpr double rim = 1;
    for (const Rect& rect : layers)
        changed += space.pixelsOf(rect.insetBy(-rim));
    // Layers show only inside the selection.
    changed &= QRegion(before.selection) + after.selection;
    return changed + DecorationLayout::difference(before, after);
}

void CanvasPainter::paintPicture(const Picture& picture) {
    const QRect& bright = picture.layout.selection;
    const QColor shade = haze();
    for (const QRect& rect : region) {
        // A clip of one rectangle keeps the copy and the blend on their fast paths.
        painter.setClipRect(rect);
        const QRect source = rect & picture.presentation.rect();
        painter.drawImage(source.topLeft(), picture.presentation, source);
        for (const QRect& dimmed : QRegion(rect) - QRegion(bright))
            painter.fillRect(dimmed, shade);
    }
    painter.setClipRegion(region);
    for (const QRect& beyond : region - QRegion(picture.presentation.rect()))
        painter.fillRect(beyond, background());
}

void CanvasPainter::paintLayers(const OverlayDocument& document, AnnotationRenderer& renderer,
                                const Picture& picture) {
    if (document.state.annotations.empty())
        return;
    for (const QRect& piece : pieces(region & picture.layout.selection)) {
        painter.save();
        painter.setClipRect(piece);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setTransform(picture.space.viewToPixels(), true);
        OverlayExport::drawLayers(document, renderer, painter);
        painter.restore();
    }
}

void CanvasPainter::paintDecorations(const Picture& picture, const BadgeText& badgeText,
                                     const QColor& accent) {
    const DecorationLayout& layout = picture.layout;
    for (const QRect& strip : layout.frameRegion())
        painter.fillRect(strip, Qt::white);
    for (const QRect& handle : layout.handles)
        paintHandle(handle, picture, handleRadius);
    for (const QRect& strip : layout.layerFrameRegion())
        painter.fillRect(strip, accent);
    for (const QRect& handle : layout.layerHandles)
        paintHandle(handle, picture, 0);
    if (layout.badge)
        paintBadge(*layout.badge, picture.space, badgeText);
}

void CanvasPainter::paintHandle(const QRect& handle, const Picture& picture, double radiusPoints) {
    if (!region.intersects(handle))
        return;
    constexpr double outlinePoints = 0.5;
    // Half a point is less than a pixel at scale 1: a whole pixel at that strength, never a blurred one.
    const double thickness = picture.layout.handleLine;
    QColor outline = QColor::fromRgbF(0.333F, 0.333F, 0.333F);
    outline.setAlphaF(static_cast<float>(std::min(1.0, outlinePoints * picture.space.scale() / thickness)));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = radiusPoints * picture.space.scale();
    QPainterPath shape;
    shape.addRoundedRect(handle, radius, radius);
    painter.fillPath(shape, Qt::white);
    // A ring instead of a pen: its edges are the pixels' own.
    const double inner = std::max(0.0, radius - thickness / 2);
    shape.addRoundedRect(QRectF(handle).adjusted(thickness, thickness, -thickness, -thickness), inner, inner);
    painter.fillPath(shape, outline);
    painter.restore();
}

void CanvasPainter::paintBadge(const DecorationLayout::Badge& badge, const CanvasSpace& space,
                               const BadgeText& badgeText) {
    if (!region.intersects(badge.frame))
        return;
    constexpr double radiusPoints = 6;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgbF(0, 0, 0, 0.86F));
    const double radius = radiusPoints * space.scale();
    painter.drawRoundedRect(badge.frame, radius, radius);

    const Size text = badgeText.size(badge.text);
    const double scale = space.scale();
    const QPointF topLeft(std::round(badge.frame.x() + (badge.frame.width() - text.width * scale) / 2),
                          std::round(badge.frame.y() + (badge.frame.height() - text.height * scale) / 2));
    painter.translate(topLeft);
    painter.scale(scale, scale);
    painter.setPen(Qt::white);
    badgeText.draw(painter, QPointF(), badge.text);
    painter.restore();
}

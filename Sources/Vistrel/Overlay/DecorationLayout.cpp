#include "Overlay/DecorationLayout.h"

#include "Overlay/OverlayHitTest.h"

namespace {

constexpr double lineThickness = 1;
constexpr double handleSide = 6;
constexpr double handleLinePoints = 0.5;
constexpr double layerFrameDistance = 3;
constexpr double hintDistanceFromTop = 72;
constexpr Size badgeMargins = {18, 10};

const QString& hintText() {
    static const QString text = QStringLiteral("Drag to select  ·  Esc cancels");
    return text;
}

/// A square of whole pixels around a place on a line: odd sides on odd lines, so that it is centred.
QRect handleAt(QPointF center, const CanvasSpace& space, int lineWidth, int lineOutside) {
    int side = space.length(handleSide);
    if ((side - lineWidth) % 2 != 0)
        ++side;
    const int inset = (side - lineWidth) / 2 + lineOutside;
    return {static_cast<int>(std::lround(center.x())) - inset,
            static_cast<int>(std::lround(center.y())) - inset, side, side};
}

DecorationLayout::Badge badgeNear(const QString& text, const Rect& near, const OverlayDocument& document,
                                  const CanvasSpace& space, const BadgeText& badgeText) {
    const Size measured = badgeText.size(text);
    const Size wanted = {measured.width + badgeMargins.width, measured.height + badgeMargins.height};
    const Rect rect = CaptureGeometry::labelRect(near, wanted, document.bounds());
    const QPointF topLeft = space.toPixels({rect.minX(), rect.maxY()});
    return {text,
            {static_cast<int>(std::lround(topLeft.x())), static_cast<int>(std::lround(topLeft.y())),
             space.length(rect.width), space.length(rect.height)}};
}

QString sizeText(const OverlayDocument& document) {
    const Rect exported =
        CaptureGeometry::pixelRect(document.selection, document.viewSize, document.imageSize());
    return QStringLiteral("%1 × %2 px").arg(std::lround(exported.width)).arg(std::lround(exported.height));
}

QRegion united(const std::vector<QRect>& rects) {
    QRegion region;
    for (const QRect& rect : rects)
        region += rect;
    return region;
}

} // namespace

DecorationLayout DecorationLayout::of(const OverlayDocument& document, const CanvasSpace& space,
                                      const BadgeText& badgeText) {
    DecorationLayout layout;
    if (!document.hasImage())
        return layout;
    layout.lineWidth = space.length(lineThickness);
    layout.lineOutside = layout.lineWidth / 2;
    layout.handleLine = space.length(handleLinePoints);
    const Rect bounds = document.bounds();
    if (!document.hasSelection()) {
        const Rect near = {bounds.midX(), bounds.maxY() - hintDistanceFromTop, 0, 0};
        layout.badge = badgeNear(hintText(), near, document, space, badgeText);
        return layout;
    }
    const Rect& selection = document.selection;
    layout.selection = space.pixelsOf(selection);
    layout.badge = badgeNear(sizeText(document), selection, document, space, badgeText);
    if (document.tool != AnnotationTool::select)
        return layout;

    // On the frame as it is painted: around whole pixels, with part of the line inside.
    const QRect& r = layout.selection;
    const int inside = layout.lineWidth - 2 * layout.lineOutside;
    const double left = r.x();
    const double top = r.y();
    const double right = r.x() + r.width() - inside;
    const double bottom = r.y() + r.height() - inside;
    const double midX = std::floor((left + right) / 2);
    const double midY = std::floor((top + bottom) / 2);
    for (const QPointF center :
         {QPointF(left, bottom), QPointF(midX, bottom), QPointF(right, bottom), QPointF(right, midY),
          QPointF(right, top), QPointF(midX, top), QPointF(left, top), QPointF(left, midY)})
        layout.handles.push_back(handleAt(center, space, layout.lineWidth, layout.lineOutside));

    const EditorAnnotation* layer = document.state.selected();
    if (!layer)
        return layout;
    const Rect frame = layer->bounds().insetBy(-layerFrameDistance);
    const QPointF topLeft = space.toPixels({frame.minX(), frame.maxY()});
    layout.layerFrame =
        QRect(static_cast<int>(std::floor(topLeft.x())), static_cast<int>(std::floor(topLeft.y())),
              space.length(frame.width), space.length(frame.height));
    const int line = layout.handleLine;
    for (const Point handle : OverlayHitTest::layerHandles(*layer))
        layout.layerHandles.push_back(
            handleAt(space.toPixels(handle), space, layout.lineWidth, layout.lineOutside)
                .adjusted(-line, -line, line, line));
    return layout;
}

QRegion DecorationLayout::strips(const QRect& around) const {
    if (around.isEmpty())
        return {};
    const int inside = lineWidth - lineOutside;
    const QRect outer = around.adjusted(-lineOutside, -lineOutside, lineOutside, lineOutside);
    return QRegion(outer) - QRegion(around.adjusted(inside, inside, -inside, -inside));
}

QRegion DecorationLayout::difference(const DecorationLayout& before, const DecorationLayout& after) {
    QRegion changed;
    if (before.selection != after.selection) {
        changed += QRegion(before.selection) ^ QRegion(after.selection);
        changed += before.frameRegion() + after.frameRegion();
    }
    if (before.handles != after.handles)
        changed += united(before.handles) + united(after.handles);
    if (before.layerHandles != after.layerHandles)
        changed += united(before.layerHandles) + united(after.layerHandles);
    if (before.layerFrame != after.layerFrame)
        changed += before.layerFrameRegion() + after.layerFrameRegion();
    if (before.badge != after.badge)
        changed += before.badgeRegion() + after.badgeRegion();
    return changed;
}

#pragma once

#include "Overlay/DecorationLayout.h"

class AnnotationRenderer;
class QPainter;

/// Paints the canvas: the frozen picture, dimmed outside the selection, the layers, then frame, handles
/// and badge. The painter's units are device pixels, y down; only `region` is touched.
class CanvasPainter {
public:
    struct Picture {
        /// The display's own pixels.
        const QImage& presentation;
        const CanvasSpace& space;
        const DecorationLayout& layout;
    };

    CanvasPainter(QPainter& painter, const QRegion& region);

    /// Where no picture is shown.
    static QColor background();
    static QColor haze();

    /// Pixels to paint again: where layers changed (view points), and between two decorations.
    static QRegion damage(const std::vector<Rect>& layers, const DecorationLayout& before,
                          const DecorationLayout& after, const CanvasSpace& space);

    void paintPicture(const Picture& picture);
    void paintLayers(const OverlayDocument& document, AnnotationRenderer& renderer, const Picture& picture);
    void paintDecorations(const Picture& picture, const BadgeText& badgeText, const QColor& accent);

private:
    /// White with a dark line within its edge.
    void paintHandle(const QRect& handle, const Picture& picture, double radiusPoints);
    void paintBadge(const DecorationLayout::Badge& badge, const CanvasSpace& space,
                    const BadgeText& badgeText);

    QPainter& painter;
    const QRegion& region;
};

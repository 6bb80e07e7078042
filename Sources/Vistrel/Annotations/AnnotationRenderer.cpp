#include "Annotations/AnnotationRenderer.h"

#include "Annotations/EffectPatches.h"
#include "Annotations/LayerPainter.h"

#include <QPaintEngine>
#include <QPainter>

namespace {

/// The picture's pixels that the painter can reach at all.
QRegion reachablePixels(const QPainter& painter, const ImageSpace& space) {
    QRegion reachable = space.wholeImage();
    if (painter.hasClipping()) {
        const QRectF clip = painter.clipBoundingRect();
        reachable &= space.pixels({clip.x(), clip.y(), clip.width(), clip.height()});
    }
    // A widget's own paint event clips to the area to be repainted, out of the painter's sight.
    const QRegion system = painter.paintEngine()->systemClip();
    if (!system.isEmpty()) {
        const QTransform toPixels = painter.deviceTransform().inverted() * space.toPixels();
        QRegion repainted;
        for (const QRect& rect : system)
            repainted += toPixels.mapRect(QRectF(rect)).toAlignedRect();
        reachable &= repainted;
    }
    return reachable;
}

} // namespace

AnnotationRenderer::AnnotationRenderer() : patches(std::make_unique<EffectPatches>()) {}

AnnotationRenderer::~AnnotationRenderer() = default;

void AnnotationRenderer::clearPatches() {
    patches->clear();
}

void AnnotationRenderer::draw(std::span<const EditorAnnotation> annotations, QPainter& painter,
                              const Canvas& canvas) {
    if (canvas.image.isNull() || canvas.bounds.isEmpty())
        return;
    const ImageSpace space(canvas.image.size(), canvas.bounds);
    const QRect selection = space.pixels(canvas.selection);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(toQRectF(space.view(selection)), Qt::IntersectClip);
    const QRegion visible = reachablePixels(painter, space) & selection;
    if (!visible.isEmpty()) {
        patches->prepare({annotations, canvas.image, space, selection}, visible);
        const Rect seen = space.view(visible.boundingRect());
        for (const EditorAnnotation& layer : annotations) {
            if (!layer.paintedBounds().intersects(seen))
                continue;
            if (AnnotationTools::isEffect(layer.tool))
                patches->paint(layer, painter, space, visible);
            else
                LayerPainter::paint(layer, painter, seen);
        }
    }
    painter.restore();
}

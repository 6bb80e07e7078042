#include "Overlay/OverlayExport.h"

#include "VistrelCore/CaptureGeometry.h"

#include <QPainter>

std::optional<QImage> OverlayExport::outputImage(const OverlayDocument& document,
                                                 AnnotationRenderer& renderer) {
    if (!document.hasImage())
        return std::nullopt;
    const Rect p = CaptureGeometry::pixelRect(document.selection, document.viewSize, document.imageSize());
    if (p.isEmpty())
        return std::nullopt;
    const QRect crop(static_cast<int>(p.x), static_cast<int>(p.y), static_cast<int>(p.width),
                     static_cast<int>(p.height));
    QImage output = document.image.copy(crop);
    output.setDevicePixelRatio(1);
    if (document.state.annotations.empty() || output.isNull())
        return output.isNull() ? std::nullopt : std::optional(output);

    QPainter painter(&output);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-crop.x(), document.image.height() - crop.y());
    painter.scale(document.image.width() / document.viewSize.width,
                  -document.image.height() / document.viewSize.height);
    drawLayers(document, renderer, painter);
    painter.end();
    return output;
}

void OverlayExport::drawLayers(const OverlayDocument& document, AnnotationRenderer& renderer,
                               QPainter& painter) {
    const AnnotationRenderer::Canvas canvas = {
        .image = document.image, .bounds = document.bounds(), .selection = document.selection};
    // Copying the layers is only worth it while one of them is hidden behind its editor.
    if (document.text && document.text->layerID)
        renderer.draw(document.visibleLayers(), painter, canvas);
    else
        renderer.draw(document.state.annotations, painter, canvas);
}

#pragma once

#include "Annotations/AnnotationRenderer.h"
#include "Overlay/OverlayDocument.h"

/// Turns the selection with its layers into a picture. Image pixels; never rescaled.
namespace OverlayExport {

/// Nothing when the selection touches no pixel. The layers are painted as on the canvas, with the
/// patches that the renderer already has.
std::optional<QImage> outputImage(const OverlayDocument& document, AnnotationRenderer& renderer);

/// Paints the layers; the painter's coordinates are view points, y up.
void drawLayers(const OverlayDocument& document, AnnotationRenderer& renderer, QPainter& painter);

} // namespace OverlayExport

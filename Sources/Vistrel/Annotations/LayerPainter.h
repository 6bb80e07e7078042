#pragma once

#include "Annotations/EditorAnnotation.h"

#include <QPen>

class QPainter;

/// Paints single layers that need nothing but a painter: all but the effects. View points, y up.
namespace LayerPainter {

/// A pen with round ends and joins. Never thinner than one pixel of the painter's device: finer lines
/// are drawn by a coarser method that darkens where a line crosses itself.
QPen roundPen(const QBrush& brush, double width, const QPainter& painter);

/// Strokes the layer's path, leaving out what cannot be seen in `visible`.
void stroke(const EditorAnnotation& annotation, QPainter& painter, const QPen& pen, const Rect& visible);

/// Paints a stroke, shape, marker or text. Does nothing for an effect.
void paint(const EditorAnnotation& annotation, QPainter& painter, const Rect& visible);

} // namespace LayerPainter

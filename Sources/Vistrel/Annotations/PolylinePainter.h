#pragma once

#include "VistrelCore/Geometry.h"

#include <QBrush>

#include <span>

class QPainter;

/// Paints freehand strokes with round ends and joins. A pixel is covered by how near its centre is to the
/// nearest part of the line, so that the cost grows with the area painted, however often the line crosses
/// itself there, and a part painted by itself is exactly that part of the whole. Any one thread.
namespace PolylinePainter {

/// At least one point, in view points as the width and `visible`, outside of which nothing needs painting.
/// The brush is aligned as the painter's own are; what it covers twice is painted once.
void paint(std::span<const Point> points, double width, const QBrush& brush, QPainter& painter,
           const Rect& visible);

} // namespace PolylinePainter

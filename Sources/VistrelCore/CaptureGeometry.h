#pragma once

#include "VistrelCore/Geometry.h"

/// Pure rules between view points (origin bottom-left, y up) and image pixels (origin top-left, y down).
/// Every function accepts any input.
namespace CaptureGeometry {

/// Pixels touched by `selection`, whole numbers, rounded outwards and cut at the image; the zero
/// rectangle when none is.
Rect pixelRect(const Rect& selection, Size viewSize, Size imageSize);

/// Where a badge of the wanted size goes: above the selection, inside its top where there is no room.
Rect labelRect(const Rect& selection, Size labelSize, const Rect& bounds);

/// The rectangle spanned by two drag points, each clamped into `bounds` first.
Rect rectBetween(Point from, Point to, const Rect& bounds);

/// Whether a rectangle of the view holds the pixel under the pointer. The pointer means the top-left corner
/// of the pixel it is over, so the left and the top edge belong to a rectangle, the right and the bottom
/// edge do not; an empty rectangle holds nothing. Every test of the pointer against a rectangle is this one.
bool holdsPixel(const Rect& rect, Point pointer);

/// The point moved into the rectangle, edges included; the upper edge wins in an empty rectangle.
Point clamped(Point point, const Rect& to);

} // namespace CaptureGeometry

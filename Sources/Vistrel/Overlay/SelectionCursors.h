#pragma once

#include <QCursor>

/// The pointer images for resizing and for the brush. Sizes in points; sharp at the given device pixels
/// per point. Main thread.
namespace SelectionCursors {

/// The pointer for a selection handle, 0 to 7 counter-clockwise from the bottom-left corner.
QCursor resize(int handle, double devicePixelRatio);
/// The pointer of freehand tools for a stroke diameter; the crosshair below 10 points.
QCursor brush(double diameter, double devicePixelRatio);

} // namespace SelectionCursors

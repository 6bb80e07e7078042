#pragma once

#include "Annotations/EditorAnnotation.h"

#include <algorithm>

/// How far things may be moved. View points.
namespace LayerMoves {

/// The offset cut so that the layer's geometry stays inside the selection.
inline Point clampedOffset(const EditorAnnotation& layer, Point offset, const Rect& selection) {
    const Rect g = layer.geometryBounds();
    return {std::min(std::max(offset.x, selection.minX() - g.minX()), selection.maxX() - g.maxX()),
            std::min(std::max(offset.y, selection.minY() - g.minY()), selection.maxY() - g.maxY())};
}

/// The selection moved by the offset, slid along the edge of `bounds` where it would leave it.
inline Rect movedSelection(const Rect& selection, Point offset, const Rect& bounds) {
    const auto slide = [](double v, double low, double high) { return std::min(std::max(v, low), high); };
    return {slide(selection.x + offset.x, bounds.minX(), bounds.maxX() - selection.width),
            slide(selection.y + offset.y, bounds.minY(), bounds.maxY() - selection.height), selection.width,
            selection.height};
}

} // namespace LayerMoves

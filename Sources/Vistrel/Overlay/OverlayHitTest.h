#pragma once

#include "Overlay/OverlayDocument.h"

/// What lies under the pointer. View points, y up.
namespace OverlayHitTest {

/// Handles 0 to 7 of a selection, counter-clockwise from the bottom-left corner.
Point selectionHandle(const Rect& selection, int handle);
/// The selection handle under the pointer; corners win over edges. Only with the select tool.
std::optional<int> resizeHandle(const OverlayDocument& document, Point p);

/// Both ends of a line or an arrow; the four corners of every other layer.
std::vector<Point> layerHandles(const EditorAnnotation& layer);
bool hasEndHandles(const EditorAnnotation& layer);
std::optional<int> layerHandle(const EditorAnnotation& layer, Point p);

/// Whether a press takes hold of the layer: anywhere on text and pixelated areas, on the line of others.
bool hits(const EditorAnnotation& layer, Point p);
/// The topmost layer that is hit; null when none is.
const EditorAnnotation* layerAt(const OverlayDocument& document, Point p);

} // namespace OverlayHitTest

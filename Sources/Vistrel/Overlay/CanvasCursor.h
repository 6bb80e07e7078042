#pragma once

#include "Overlay/OverlayDocument.h"

/// Which pointer to show; a value, so that the rule needs no window.
struct CanvasCursor {
    enum class Shape { arrow, crosshair, iBeam, openHand, closedHand, resize, brush };

    Shape shape = Shape::crosshair;
    /// Selection handle 0 to 7, for `resize`.
    int handle = 0;
    /// Points, for `brush`.
    double diameter = 0;

    friend bool operator==(const CanvasCursor&, const CanvasCursor&) = default;

    /// The pointer for a place on the canvas; `overPanel` when a visible panel lies there.
    static CanvasCursor at(Point p, const OverlayDocument& document, bool overPanel);
    /// The pointer of the current tool inside the selection.
    static CanvasCursor drawing(const OverlayDocument& document);
};

#pragma once

#include "VistrelCore/Geometry.h"

/// Where the three floating panels of the editor stand around a selection, and the magnification they
/// share. Points of the display's overlay, y up. Nothing is rounded to pixels.
struct EditorLayout {
    /// Where the tools panel went relative to the selection.
    enum class Side { right, left, inside };

    struct Request {
        Rect selection;
        /// The whole overlay of one display.
        Rect bounds;
        /// Heights and widths at scale 1.
        double layersHeight = 0;
        double actionWidth = 0;
        /// The user's magnification, before it is fitted to the display.
        double panelScale = 1;
    };

    Rect tools;
    Rect layers;
    Rect actions;
    Side side = Side::right;
    double scale = 1;

    EditorLayout() = default;
    /// Returns a layout for any input; on a display too small for the panels they shrink to nothing.
    explicit EditorLayout(const Request& request);

    friend bool operator==(const EditorLayout&, const EditorLayout&) = default;
};

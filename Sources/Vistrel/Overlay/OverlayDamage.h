#pragma once

#include "VistrelCore/Geometry.h"

#include <vector>

/// The parts of the canvas whose layers look different since the last repaint. View points, y up.
struct OverlayDamage {
    std::vector<Rect> rects;

    void add(const Rect& rect) { rects.push_back(rect.standardized()); }
    std::vector<Rect> take() { return std::exchange(rects, {}); }
};

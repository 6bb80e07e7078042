#pragma once

#include "VistrelPlatform/Screen.h"
#include "VistrelPlatform/ScreenCapturer.h"

/// The pixels to capture for a display of `point` size: its own, or half as dense when reduction is on
/// and that leaves at least one pixel per point. Halves round away from zero; at least 1 × 1.
PixelSize capturePixelSize(Size point, double displayScale, bool downscaleRetina);

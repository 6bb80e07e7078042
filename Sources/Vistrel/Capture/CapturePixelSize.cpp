#include "Capture/CapturePixelSize.h"

#include "VistrelPlatform/Result.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
int pixels(double length) {
    VISTREL_PRECONDITION(std::isfinite(length) && std::abs(length) <= std::numeric_limits<int>::max(),
                         "a display length is out of range");
    return std::max(1, static_cast<int>(std::lround(length)));
}
} // namespace

PixelSize capturePixelSize(Size point, double displayScale, bool downscaleRetina) {
    constexpr double leastHalved = 2;
    const double divisor = downscaleRetina && displayScale >= leastHalved ? 2.0 : 1.0;
    const double scale = displayScale / divisor;
    return {pixels(point.width * scale), pixels(point.height * scale)};
}

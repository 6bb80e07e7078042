#pragma once

#include "VistrelPlatform/Screen.h"
#include "VistrelPlatform/ScreenCapturer.h"

/// One display's capture, matched to its screen.
struct FrozenDisplay {
    Screen screen;
    std::uint32_t displayID = 0;
    CapturedImage captured;
};

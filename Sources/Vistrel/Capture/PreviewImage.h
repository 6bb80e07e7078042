#pragma once

#include "VistrelPlatform/Screen.h"
#include "VistrelPlatform/ScreenCapturer.h"

/// A generated picture of a display's native size: a dark ground with a grid of lines 80 points apart.
CapturedImage previewImage(const Screen& screen);

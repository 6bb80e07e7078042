#pragma once

#include "VistrelPlatform/Result.h"

/// What can go wrong between a request and its pictures, each with the text the user reads.
enum class CaptureError { noDisplay = 0, encode = 1, imageDimensions = 2, directUnavailable = 3 };

/// The domain "com.orvane.Vistrel.capture" with the case's number as code.
Error captureError(CaptureError error);

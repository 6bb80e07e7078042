#pragma once

#include "App/Console.h"
#include "VistrelPlatform/Result.h"

#include <cstdint>

/// Measures what a rolling history of frames would cost, with synthetic frames. Nothing is captured.
/// Runs on the calling thread.
namespace BufferProfiler {

struct Request {
    /// Pixels of each display.
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::int64_t displays = 0;
    std::int64_t maximumFPS = 0;
};

/// Prints its findings. A history that does not fit into memory is a finding, too; the only failure is
/// `CaptureError::encode`, when a synthetic frame cannot be made.
Result<void> run(const Request& request, const Console& console);

} // namespace BufferProfiler

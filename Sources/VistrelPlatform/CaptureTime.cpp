#include "VistrelPlatform/CaptureTime.h"

#include <algorithm>
#include <ctime>

namespace {
std::chrono::nanoseconds read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}
} // namespace

CaptureTime::Clock::time_point CaptureTime::Clock::now() {
    return time_point(read(CLOCK_BOOTTIME));
}

double CaptureTime::milliseconds(Clock::duration duration) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
    return static_cast<double>(seconds.count()) * 1000.0 +
           static_cast<double>((duration - seconds).count()) / 1e6;
}

std::chrono::nanoseconds CaptureTime::hostTime() {
    return read(CLOCK_MONOTONIC);
}

CaptureTime::Instant CaptureTime::instantOfHostTime(std::chrono::nanoseconds hostTime) {
    const Instant now = Clock::now();
    return now + std::min(hostTime - CaptureTime::hostTime(), std::chrono::nanoseconds(0));
}

#pragma once

#include <chrono>
#include <cstdint>

/// The process-wide clock captures are measured with. It goes on counting while the machine sleeps
/// (CLOCK_BOOTTIME). Any thread.
struct CaptureTime {
    struct Clock {
        using duration = std::chrono::nanoseconds;
        using rep = duration::rep;
        using period = duration::period;
        using time_point = std::chrono::time_point<Clock>;
        static constexpr bool is_steady = true;
        static time_point now();
    };
    using Instant = Clock::time_point;

    static Instant now() { return Clock::now(); }

    /// Milliseconds with fractions: whole seconds times 1000 plus the rest.
    static double milliseconds(Clock::duration duration);

    /// CLOCK_MONOTONIC now, the clock that window-system event times are taken from.
    static std::chrono::nanoseconds hostTime();

    /// The instant at which the host clock showed `hostTime`; the present when that lies ahead.
    static Instant instantOfHostTime(std::chrono::nanoseconds hostTime);
};

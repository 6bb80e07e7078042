#pragma once

#include "VistrelPlatform/CaptureTime.h"
#include "VistrelPlatform/X11/Xcb.h"

#include <optional>

/// Turns the time in an event into an instant. The server counts milliseconds of CLOCK_MONOTONIC modulo
/// 2³² on this system; that is checked once, and where it is not so every event counts as just now.
class X11ServerTime {
public:
    /// Asks the server of that display with a short-lived connection of its own.
    static X11ServerTime measure(const char* displayName = nullptr);
    explicit X11ServerTime(bool exact) : followsHostClock(exact) {}

    bool isExact() const { return followsHostClock; }
    CaptureTime::Instant instantOf(xcb_timestamp_t time) const;

private:
    bool followsHostClock;
};

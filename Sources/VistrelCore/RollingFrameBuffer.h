#pragma once

#include "VistrelCore/CheckedArithmetic.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>
#include <vector>

/// Values with their time, kept for a limited time and up to a limited number, and the newest one for as
/// long as there is no newer. A plain value without a lock; `Instant` is a time point of any clock.
template<class Value, class Instant>
class RollingFrameBuffer {
public:
    using Duration = typename Instant::duration;

    struct Entry {
        Instant timestamp;
        Value value;
    };

    RollingFrameBuffer(Duration keptFor, std::int64_t mostFrames) : duration(keptFor), limit(mostFrames) {
        CheckedArithmetic::require(keptFor > Duration::zero(), "A history needs a positive duration");
        CheckedArithmetic::require(mostFrames >= 1, "A history needs room for a frame");
    }

    Duration historyDuration() const { return duration; }
    std::int64_t maximumFrames() const { return limit; }
    /// Oldest first.
    const std::vector<Entry>& entries() const { return kept; }
    const std::optional<Entry>& latest() const { return newest; }

    /// A value older than the newest one is dropped.
    void append(Value value, Instant timestamp) {
        if (newest && timestamp < newest->timestamp)
            return;
        prune(timestamp);
        kept.push_back({timestamp, value});
        newest = Entry{timestamp, std::move(value)};
        if (const auto surplus = static_cast<std::int64_t>(kept.size()) - limit; surplus > 0)
            kept.erase(kept.begin(), kept.begin() + surplus);
    }

    /// Drops what is older than the history, seen from `now`; the newest value stays known.
    void prune(Instant now) {
        const Instant cutoff = now - duration;
        std::erase_if(kept, [cutoff](const Entry& entry) { return entry.timestamp < cutoff; });
    }

    /// What was there at `offset` before the instant: the entry closest before that, the newest value
    /// when the history holds none and it is old enough.
    std::optional<Entry> frame(Instant before, Duration offset) const {
        const Instant target = before - std::max(offset, Duration::zero());
        std::optional<Entry> closest;
        for (const Entry& entry : kept)
            if (entry.timestamp >= target - duration && entry.timestamp <= target &&
                (!closest || entry.timestamp > closest->timestamp))
                closest = entry;
        if (!closest && newest && newest->timestamp <= target)
            return newest;
        return closest;
    }

    void removeAll() {
        kept.clear();
        newest.reset();
    }

private:
    Duration duration;
    std::int64_t limit;
    std::vector<Entry> kept;
    std::optional<Entry> newest;
};

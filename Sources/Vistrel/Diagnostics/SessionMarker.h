#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QUuid>

#include <optional>

/// Tells that a launch has begun; it is there while the program runs and after it was cut off.
struct SessionMarker {
    /// Larger files are no marker.
    static constexpr qint64 largestFile = 1023;

    QUuid launch;
    /// Seconds since 2001-01-01 00:00 UTC.
    double date = 0;

    friend bool operator==(const SessionMarker&, const SessionMarker&) = default;

    static double secondsOf(const QDateTime& date);
    static std::optional<SessionMarker> decode(const QByteArray& bytes);
    QByteArray encoded() const;
};

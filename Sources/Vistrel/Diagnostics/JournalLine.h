#pragma once

#include "Diagnostics/LocalDiagnostics.h"

#include <QByteArray>
#include <QJsonObject>

#include <optional>

/// One event as it stands in the journal's files and in problem reports: one line of JSON with sorted
/// keys, absent details left out, dates in UTC to the second. Any thread.
namespace JournalLine {

/// Nothing when a duration is no number that JSON could hold.
std::optional<QJsonObject> object(const LocalDiagnostics::Event& event);
/// The line with its line feed; nothing as above.
std::optional<QByteArray> encode(const LocalDiagnostics::Event& event);
/// Nothing for a line that `encode` could not have written.
std::optional<LocalDiagnostics::Event> decode(const QByteArray& line);

/// "2026-03-01T12:00:00Z", whatever the time zone of `date`.
QString dateText(const QDateTime& date);

/// Two to four decimal numbers joined by points.
bool isVersionNumber(const QString& text);

} // namespace JournalLine

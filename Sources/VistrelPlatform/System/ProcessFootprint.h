#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>

/// The memory that this process takes up. Any thread.
namespace ProcessFootprint {

/// Proportional set size in bytes: private pages, and the process's share of what it has in common with
/// others. 0 where the system does not tell.
std::int64_t bytes();

/// The same from the text of /proc/PID/smaps_rollup.
std::optional<std::int64_t> parse(const QByteArray& smapsRollup);

} // namespace ProcessFootprint

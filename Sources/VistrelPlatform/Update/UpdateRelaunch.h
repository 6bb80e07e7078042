#pragma once

#include <QString>

/// Starts the program again in its new version.
namespace UpdateRelaunch {

/// Waits outside this process until it has ended, so that the new one does not find it running.
/// False when nothing could be started.
bool startAfterExit(const QString& program);

} // namespace UpdateRelaunch

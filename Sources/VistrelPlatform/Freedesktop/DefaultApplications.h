#pragma once

#include "VistrelPlatform/Freedesktop/ShareProcess.h"

#include <QStringList>

#include <memory>
#include <vector>

/// The desktop's page for choosing which application opens what. Main thread.
namespace DefaultApplications {

/// Every command worth trying on `desktop` (the value of XDG_CURRENT_DESKTOP), best first: that page in the
/// running desktop's settings program, that program's front page, then other desktops' pages.
std::vector<QStringList> settingsCommands(const QString& desktop);

/// Starts the first of the commands that is installed.
Result<std::unique_ptr<ShareProcess>> openSettings();

} // namespace DefaultApplications

#pragma once

#include "Desktop/Fixture/DesktopSession.h"

#include <memory>

/// The program as it runs day by day: past its setup, its shortcut held, nothing on the screen.
namespace ResidentProgram {

/// What a user has who has been through the first-run setup; `more` are JSON members.
void writeDefaults(const DesktopSession& desktop, const QByteArray& more = {});

/// Starts it and returns when it has told its journal; stops the meter when it does not.
std::unique_ptr<ChildProgram> start(DesktopSession& desktop, const QString& program);

/// Presses the shortcut and returns when every one of the `displays` lies under an overlay.
void capture(DesktopSession& desktop, int displays = 1);

/// Returns when no overlay is left.
void awaitClosed(DesktopSession& desktop);

} // namespace ResidentProgram

#pragma once

#include "Desktop/Fixture/DesktopSession.h"
#include "Desktop/Fixture/Waiting.h"

/// The session that this test program and its application object live in.
inline constexpr QSize testScreenSize{2400, 1200};
DesktopSession& testSession();
/// Gives the session these monitors, and returns when the toolkit has noticed all of it.
void useMonitors(const std::vector<MonitorSetup>& monitors);
/// Returns when the toolkit has handled all that the server had told it up to now, and what that brought
/// about.
void settle();

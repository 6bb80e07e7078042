#pragma once

#include "Desktop/Fixture/DesktopSession.h"

/// The session that this test program and its application object live in.
inline constexpr QSize testScreenSize{2400, 1200};
DesktopSession& testSession();
/// Gives the session these monitors, and returns when the toolkit has noticed all of it.
void useMonitors(const std::vector<MonitorSetup>& monitors);

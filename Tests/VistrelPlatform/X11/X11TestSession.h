#pragma once

#include "Desktop/Fixture/DesktopSession.h"
#include "Desktop/Fixture/Waiting.h"

/// The session that this test program and its application object live in.
inline constexpr QSize testScreenSize{2400, 1200};
DesktopSession& testSession();
/// Gives the session these monitors, and returns when the toolkit has noticed all of it.
void useMonitors(const std::vector<MonitorSetup>& monitors);
/// Everything the toolkit and the server have to do up to now is done.
inline void settle() {
    waitUntil([] { return false; }, std::chrono::milliseconds(100));
}

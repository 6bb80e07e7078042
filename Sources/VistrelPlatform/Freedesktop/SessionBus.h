#pragma once

/// The message bus of the user's session.
namespace SessionBus {

/// Where no bus runs, the bus libraries start one of their own, which nobody ends. This keeps them, and
/// the programs started from here, to the bus that the session has or will have. Before any of them asks.
void neverLaunch();

} // namespace SessionBus

#pragma once

/// Whether the X server that the environment names answers. Asked before the toolkit is set up, which would
/// abort the process without one. Any thread.
bool isDisplayReachable();

#pragma once

#include <QString>

namespace LoginItemAlert {

/// Tells that the login item could not be changed, and why; true when the user wants to see the desktop's
/// page for it. Main thread; returns when the alert is answered.
bool ask(const QString& description);

} // namespace LoginItemAlert

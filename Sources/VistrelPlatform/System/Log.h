#pragma once

#include <QLoggingCategory>

/// The program's one category in the system log, "com.orvane.Vistrel".
Q_DECLARE_LOGGING_CATEGORY(vistrelLog)

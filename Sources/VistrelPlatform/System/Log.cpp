#include "VistrelPlatform/System/Log.h"

Q_LOGGING_CATEGORY(vistrelLog, "com.orvane.Vistrel")

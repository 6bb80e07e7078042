#pragma once

#include "VistrelPlatform/Result.h"

#include <optional>

/// Why a report was not delivered, as far as the user can do something about it.
enum class ReportUploadError { offline = 0, rateLimited = 1, unavailable = 2, tooLarge = 3 };

/// The domain "com.orvane.Vistrel.report" with the case's number as code and the text the user reads.
Error reportUploadError(ReportUploadError error);

/// What the user reads about any failure to build or send a report.
QString reportFailureText(const Error& error);

#include "Reports/ReportUploadError.h"

namespace {

const QString domain = QStringLiteral("com.orvane.Vistrel.report");

QString text(ReportUploadError error) {
    switch (error) {
    case ReportUploadError::offline:
        return QStringLiteral("You’re offline. Please try again when connected.");
    case ReportUploadError::rateLimited:
        return QStringLiteral("Too many reports. Please try again later.");
    case ReportUploadError::unavailable:
        return QStringLiteral("Couldn’t confirm delivery. Please try again.");
    case ReportUploadError::tooLarge:
        return QStringLiteral("This report is too large to send. Please try again after clearing diagnostic "
                              "history in Appearance → Diagnostics.");
    }
    Q_UNREACHABLE();
}

} // namespace

Error reportUploadError(ReportUploadError error) {
    return {domain, static_cast<int>(error), text(error)};
}

QString reportFailureText(const Error& error) {
    return error.domain == domain ? error.description : text(ReportUploadError::unavailable);
}

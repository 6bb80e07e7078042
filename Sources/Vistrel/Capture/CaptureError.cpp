#include "Capture/CaptureError.h"

Error captureError(CaptureError error) {
    const auto make = [error](const QString& description) {
        return Error{QStringLiteral("com.orvane.Vistrel.capture"), static_cast<int>(error), description};
    };
    switch (error) {
    case CaptureError::noDisplay:
        return make(QStringLiteral(
            "No available display was found. Check Screen Recording permission and try again."));
    case CaptureError::encode:
        return make(QStringLiteral("The screenshot could not be encoded. Your selection is still open."));
    case CaptureError::imageDimensions:
        return make(QStringLiteral("The screenshot dimensions did not match the display. Try again."));
    case CaptureError::directUnavailable:
        return make(QStringLiteral("Direct screenshot capture requires macOS 26 or later."));
    }
    Q_UNREACHABLE();
}

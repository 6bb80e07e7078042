#include "Capture/CaptureMethod.h"

std::optional<CaptureMethod> captureMethodNamed(const QString& name) {
    if (name == QLatin1StringView("automatic"))
        return CaptureMethod::automatic;
    if (name == QLatin1StringView("filtered"))
        return CaptureMethod::filtered;
    if (name == QLatin1StringView("direct"))
        return CaptureMethod::direct;
    return std::nullopt;
}

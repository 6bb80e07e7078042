#include "Settings/EditorPreferences.h"

#include <cmath>

namespace {

const QString scaleKey = QStringLiteral("editorPanelScalePercentV2");
// Measured from a base of 0.8 times today's. Only read.
const QString formerScaleKey = QStringLiteral("editorPanelScalePercent");
constexpr double formerScaleBase = 0.8;
const QString doubleClickKey = QStringLiteral("doubleClickOutsideToCancel");
const QString downscaleKey = QStringLiteral("downscaleRetinaScreenshots");
const QString formatKey = QStringLiteral("screenshotSaveFormat");
const QString formerJPGValue = QStringLiteral("jpeg");

double clampedScale(double percent) {
    return std::isfinite(percent) ? std::clamp(percent, 50.0, 150.0) : 100.0;
}

/// True when nothing is stored. A number or a word put there by hand counts for what it says.
bool booleanOrTrue(const UserDefaults& defaults, const QString& key) {
    if (!defaults.has(key))
        return true;
    if (const std::optional<bool> stored = defaults.boolean(key))
        return *stored;
    if (const std::optional<double> number = defaults.number(key))
        return *number != 0;
    const QString word = defaults.string(key).value_or(QString()).toLower();
    return word == QLatin1StringView("true") || word == QLatin1StringView("yes") ||
           word == QLatin1StringView("1");
}

} // namespace

EditorPreferences::EditorPreferences(UserDefaults& userDefaults, QObject* parent)
    : QObject(parent), defaults(userDefaults) {
    if (const std::optional<double> stored = defaults.number(scaleKey)) {
        scale = clampedScale(*stored);
    } else if (const std::optional<double> former = defaults.number(formerScaleKey)) {
        scale = clampedScale(*former / formerScaleBase);
        defaults.setNumber(scaleKey, scale);
    }
    doubleClickCancels = booleanOrTrue(defaults, doubleClickKey);
    downscale = booleanOrTrue(defaults, downscaleKey);
    const QString stored = defaults.string(formatKey).value_or(QString());
    if (stored == formerJPGValue || stored == rawValue(ScreenshotSaveFormat::jpg))
        format = ScreenshotSaveFormat::jpg;
    if (stored == formerJPGValue)
        defaults.setString(formatKey, rawValue(format));
}

// Observers hear of a value before it is stored. What is stored is the member, so that an observer who
// assigns again has the last word.

void EditorPreferences::setScalePercent(double percent) {
    scale = clampedScale(percent);
    Q_EMIT scalePercentChanged();
    defaults.setNumber(scaleKey, scale);
}

void EditorPreferences::setDoubleClickOutsideToCancel(bool cancels) {
    doubleClickCancels = cancels;
    Q_EMIT doubleClickOutsideToCancelChanged();
    defaults.setBoolean(doubleClickKey, doubleClickCancels);
}

void EditorPreferences::setDownscaleRetinaScreenshots(bool reduces) {
    downscale = reduces;
    Q_EMIT downscaleRetinaScreenshotsChanged();
    defaults.setBoolean(downscaleKey, downscale);
}

void EditorPreferences::setSaveFormat(ScreenshotSaveFormat saveFormat) {
    format = saveFormat;
    Q_EMIT saveFormatChanged();
    defaults.setString(formatKey, rawValue(format));
}

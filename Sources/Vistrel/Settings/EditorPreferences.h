#pragma once

#include "Settings/ScreenshotSaveFormat.h"
#include "VistrelPlatform/UserDefaults.h"

#include <QObject>

/// The user's choices that shape a capture, backed by the user defaults: read once at construction,
/// written back with every change. Main thread. Every assignment emits the property's signal.
class EditorPreferences : public QObject {
    Q_OBJECT
    Q_PROPERTY(double scalePercent READ scalePercent WRITE setScalePercent NOTIFY scalePercentChanged)
    Q_PROPERTY(bool doubleClickOutsideToCancel READ doubleClickOutsideToCancel WRITE
                   setDoubleClickOutsideToCancel NOTIFY doubleClickOutsideToCancelChanged)
    Q_PROPERTY(bool downscaleRetinaScreenshots READ downscaleRetinaScreenshots WRITE
                   setDownscaleRetinaScreenshots NOTIFY downscaleRetinaScreenshotsChanged)
public:
    /// `defaults` is borrowed and outlives this object.
    explicit EditorPreferences(UserDefaults& defaults, QObject* parent = nullptr);

    /// Panel size, always within 50 to 150.
    double scalePercent() const { return scale; }
    void setScalePercent(double percent);

    bool doubleClickOutsideToCancel() const { return doubleClickCancels; }
    void setDoubleClickOutsideToCancel(bool cancels);

    bool downscaleRetinaScreenshots() const { return downscale; }
    void setDownscaleRetinaScreenshots(bool reduces);

    ScreenshotSaveFormat saveFormat() const { return format; }
    void setSaveFormat(ScreenshotSaveFormat saveFormat);

Q_SIGNALS:
    void scalePercentChanged();
    void doubleClickOutsideToCancelChanged();
    void downscaleRetinaScreenshotsChanged();
    void saveFormatChanged();

private:
    UserDefaults& defaults;
    double scale = 100;
    bool doubleClickCancels = true;
    bool downscale = true;
    ScreenshotSaveFormat format = ScreenshotSaveFormat::png;
};

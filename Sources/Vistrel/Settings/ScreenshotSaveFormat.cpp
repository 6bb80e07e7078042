#include "Settings/ScreenshotSaveFormat.h"

QString rawValue(ScreenshotSaveFormat format) {
    return format == ScreenshotSaveFormat::jpg ? QStringLiteral("jpg") : QStringLiteral("png");
}

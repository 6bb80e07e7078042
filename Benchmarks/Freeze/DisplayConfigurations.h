#pragma once

#include "Desktop/Fixture/DesktopSession.h"

#include <algorithm>
#include <vector>

/// The screens that the figures are told for.
struct DisplayConfiguration {
    const char* name;
    QSize screenSize;
    std::vector<MonitorSetup> monitors;
};

inline std::vector<DisplayConfiguration> displayConfigurations() {
    const QString first = QStringLiteral("first");
    const QString second = QStringLiteral("second");
    return {
        {"1920x1080", {1920, 1080}, {{first, {0, 0, 1920, 1080}}}},
        {"3840x2160", {3840, 2160}, {{first, {0, 0, 3840, 2160}}}},
        {"2x3840x2160", {7680, 2160}, {{first, {0, 0, 3840, 2160}}, {second, {3840, 0, 3840, 2160}}}},
    };
}

/// How the cost grows with the number of displays.
inline std::vector<DisplayConfiguration> growingConfigurations() {
    const QString names[] = {QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("third"),
                             QStringLiteral("fourth")};
    std::vector<MonitorSetup> monitors;
    monitors.reserve(std::size(names));
    for (int index = 0; index < 4; ++index)
        monitors.push_back({names[index], {1920 * (index % 2), 1080 * (index / 2), 1920, 1080}});
    return {{"2x1920x1080", {3840, 1080}, {monitors.begin(), monitors.begin() + 2}},
            {"4x1920x1080", {3840, 2160}, monitors}};
}

inline double median(std::vector<double> values) {
    std::ranges::sort(values);
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

/// Fine detail everywhere, as no real screen has: nothing is quicker for being plain.
inline QImage detailedPicture(QSize size) {
    QImage picture(size, QImage::Format_RGB32);
    std::uint32_t state = 1;
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            state = state * 1664525U + 1013904223U;
            row[x] = 0xFF000000U | state >> 8;
        }
    }
    return picture;
}

#include "Desktop/EditorOnDesktop.h"

#include <gtest/gtest.h>

EditorOnDesktop::EditorOnDesktop(const DesktopSession::Options& options)
    : VistrelOnDesktop(options), desktop(noise(options.screenSize)) {
    session.client().setRootPicture(desktop);
}

bool EditorOnDesktop::edit(QRect area) {
    selection = area;
    start();
    const bool selected = capture() && select(area);
    read = actions().size();
    return selected;
}

QPoint EditorOnDesktop::center(PanelControl::Kind kind, int index) const {
    const double height = desktop.height();
    const Rect selected{double(selection.x()), height - selection.y() - selection.height(),
                        double(selection.width()), double(selection.height())};
    return PanelPlaces(selected, {double(desktop.width()), height}, layers).center(kind, index).toPoint();
}

std::string EditorOnDesktop::steps(int count) {
    waitUntil([&] { return actions().size() >= read + count; });
    std::string story;
    qsizetype index = 0;
    for (const QJsonObject& event : events()) {
        const QString action = event[u"action"].toString();
        if (action == QLatin1String("capturePhase") || index++ < read || index > read + count)
            continue;
        const QJsonValue details = event[u"details"];
        const auto number = [&](const char* name) {
            const QJsonValue value = details[QLatin1String(name)];
            return value.isDouble() ? std::to_string(value.toInt()) : std::string("-");
        };
        story += (story.empty() ? "" : " ") + action.toStdString() + '(' + number("tool") + ',' +
                 number("size") + ',' + number("layers") + ')';
    }
    read = std::min(read + count, index);
    return story;
}

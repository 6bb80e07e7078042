#include "Desktop/EditorOnDesktop.h"

#include <gtest/gtest.h>

namespace {
constexpr double designCell = 42;
constexpr double rowPitch = 32;
constexpr double headingHeight = 26;
constexpr double visibleRows = 5;
} // namespace

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

EditorLayout EditorOnDesktop::layout() const {
    const double height = desktop.height();
    const double rows = std::clamp(double(layers), 1.0, visibleRows);
    return EditorLayout({.selection = {double(selection.x()), height - selection.y() - selection.height(),
                                       double(selection.width()), double(selection.height())},
                         .bounds = {0, 0, double(desktop.width()), height},
                         .layersHeight = rows * rowPitch + headingHeight,
                         .actionWidth = 196,
                         .panelScale = 0.8});
}

QRectF EditorOnDesktop::onScreen(const Rect& rect) const {
    return {rect.x, desktop.height() - rect.maxY(), rect.width, rect.height};
}

QPoint EditorOnDesktop::cell(int row, int column) const {
    const EditorLayout panels = layout();
    const QRectF tools = onScreen(panels.tools);
    const double side = designCell * panels.scale;
    return QPointF(tools.left() + (column + 0.5) * side, tools.bottom() - (row + 0.5) * side).toPoint();
}

QPoint EditorOnDesktop::toolButton(Tool tool) const {
    constexpr Tool places[][2] = {{text, text},         {blur, pixelate}, {line, arrow},
                                  {rectangle, ellipse}, {pen, marker},    {selectTool, selectTool}};
    for (int row = 0; row < int(std::size(places)); ++row)
        for (const int column : {0, 1})
            if (places[row][column] == tool)
                return cell(row, column);
    return {};
}

QPoint EditorOnDesktop::sizeField() const {
    const QRectF tools = onScreen(layout().tools);
    return QPointF(tools.center().x(), tools.top() + 12).toPoint();
}

QPoint EditorOnDesktop::minusButton() const {
    return sizeField() - QPoint(qRound(onScreen(layout().tools).width() / 2) - 8, 0);
}

QPoint EditorOnDesktop::actionButton(Action action) const {
    const QRectF bar = onScreen(layout().actions);
    return QPointF(bar.left() + (int(action) + 0.5) * bar.width() / 4, bar.center().y()).toPoint();
}

QPoint EditorOnDesktop::rowPoint(int row, double designX) const {
    const EditorLayout panels = layout();
    const QRectF list = onScreen(panels.layers);
    return QPointF(list.left() + designX * panels.scale,
                   list.top() + (headingHeight + (row + 0.5) * rowPitch) * panels.scale)
        .toPoint();
}

QPoint EditorOnDesktop::rowTrash(int row) const {
    const double scrollBar = layers > visibleRows ? 9 : 0;
    return rowPoint(row, 156 - scrollBar - 12);
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

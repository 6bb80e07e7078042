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
    if (!capture())
        return false;
    drag(area.topLeft(), area.topLeft() + QPoint(area.width(), area.height()));
    if (!waitFor(QStringLiteral("selectionCreated")))
        return false;
    read = actions().size();
    return true;
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
    switch (tool) {
    case select:
        return cell(5, 0);
    case pen:
        return cell(4, 0);
    case marker:
        return cell(4, 1);
    case rectangle:
        return cell(3, 0);
    case ellipse:
        return cell(3, 1);
    case line:
        return cell(2, 0);
    case arrow:
        return cell(2, 1);
    case blur:
        return cell(1, 0);
    case pixelate:
        return cell(1, 1);
    case text:
        return cell(0, 0);
    }
    return {};
}

QPoint EditorOnDesktop::sizeField() const {
    const QRectF tools = onScreen(layout().tools);
    return QPointF(tools.center().x(), tools.top() + 12).toPoint();
}

QPoint EditorOnDesktop::minusButton() const {
    return sizeField() - QPoint(qRound(onScreen(layout().tools).width() / 2) - 8, 0);
}

QPoint EditorOnDesktop::plusButton() const {
    return sizeField() + QPoint(qRound(onScreen(layout().tools).width() / 2) - 8, 0);
}

QPoint EditorOnDesktop::actionButton(Action action) const {
    const QRectF bar = onScreen(layout().actions);
    return QPointF(bar.left() + (static_cast<int>(action) + 0.5) * bar.width() / 4, bar.center().y())
        .toPoint();
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
    std::vector<QJsonObject> found;
    const auto collect = [&] {
        found = events();
        std::erase_if(found, [](const QJsonObject& event) {
            return event[QLatin1StringView("action")].toString() == QLatin1StringView("capturePhase");
        });
        return qsizetype(found.size()) >= read + count;
    };
    waitUntil(collect);
    std::string story;
    for (qsizetype i = read; i < std::min(read + count, qsizetype(found.size())); ++i) {
        const QJsonObject& event = found[std::size_t(i)];
        const QJsonValue details = event[QLatin1StringView("details")];
        const auto number = [&](const char* name) {
            const QJsonValue value = details[QLatin1StringView(name)];
            return value.isDouble() ? std::to_string(value.toInt()) : std::string("-");
        };
        story += (story.empty() ? "" : " ") + event[QLatin1StringView("action")].toString().toStdString() +
                 '(' + number("tool") + ',' + number("size") + ',' + number("layers") + ')';
    }
    read = std::min(read + count, qsizetype(found.size()));
    return story;
}

QImage EditorOnDesktop::settledSelection() {
    constexpr int looksAlike = 25;
    QImage last;
    int alike = 0;
    EXPECT_TRUE(waitUntil([&] {
        const QImage now = session.screenPixels(selection);
        alike = now == last ? alike + 1 : 0;
        last = now;
        return alike >= looksAlike;
    }));
    return last;
}

bool EditorOnDesktop::waitUntilSelectionShows(const QImage& picture) {
    return waitUntil([&] { return session.screenPixels(selection) == picture; });
}

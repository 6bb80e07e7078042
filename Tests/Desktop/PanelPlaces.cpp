#include "Desktop/PanelPlaces.h"

#include <algorithm>

namespace {

constexpr double designCell = 42;
constexpr double rowPitch = 32;
constexpr double headingHeight = 26;
constexpr double listWidth = 156;
constexpr double scrollBarWidth = 9;
constexpr int visibleRows = 5;

struct Cell {
    PanelControl::Kind kind;
    int index;
    int row; // upwards from the bottom
    int column;
};
constexpr Cell cells[] = {
    {PanelControl::tool, 9, 0, 0}, {PanelControl::tool, 7, 1, 0},  {PanelControl::tool, 8, 1, 1},
    {PanelControl::tool, 5, 2, 0}, {PanelControl::tool, 2, 2, 1},  {PanelControl::tool, 3, 3, 0},
    {PanelControl::tool, 6, 3, 1}, {PanelControl::tool, 1, 4, 0},  {PanelControl::tool, 4, 4, 1},
    {PanelControl::tool, 0, 5, 0}, {PanelControl::color, 0, 5, 1}, {PanelControl::undo, 0, 6, 0},
    {PanelControl::redo, 0, 6, 1},
};

} // namespace

PanelPlaces::PanelPlaces(const Rect& selection, Size display, int layers) {
    const int rows = std::clamp(layers, 1, visibleRows);
    const EditorLayout layout({.selection = selection,
                               .bounds = {0, 0, display.width, display.height},
                               .layersHeight = rows * rowPitch + headingHeight,
                               .actionWidth = 196,
                               .panelScale = 0.8});
    scale = layout.scale;
    for (const Rect& frame : {layout.tools, layout.layers, layout.actions})
        frames.emplace_back(frame.x, display.height - frame.maxY(), frame.width, frame.height);
    addTools(frames[0]);
    addRows(frames[1], layers);
    addActions(frames[2]);
}

QPointF PanelPlaces::center(PanelControl::Kind kind, int index) const {
    const auto found = std::ranges::find_if(
        all, [&](const PanelControl& control) { return control.kind == kind && control.index == index; });
    return found == all.end() ? QPointF() : found->area.center();
}

void PanelPlaces::addTools(const QRectF& panel) {
    const double side = designCell * scale;
    for (const Cell& cell : cells)
        all.push_back(
            {cell.kind, cell.index,
             QRectF(panel.left() + cell.column * side, panel.bottom() - (cell.row + 1) * side, side, side)});
    const QRectF strip(panel.left(), panel.top(), panel.width(), panel.height() - 7 * side);
    const double step = std::min(std::max(21.6 * scale, 12.0), strip.width() / 2);
    all.push_back({PanelControl::smaller, 0, QRectF(strip.left(), strip.top(), step, strip.height())});
    all.push_back({PanelControl::larger, 0, QRectF(strip.right() - step, strip.top(), step, strip.height())});
    all.push_back({PanelControl::sizeField, 0, strip.adjusted(step, 0, -step, 0)});
}

void PanelPlaces::addActions(const QRectF& panel) {
    const PanelControl::Kind kinds[] = {PanelControl::record, PanelControl::share, PanelControl::save,
                                        PanelControl::copy};
    const double width = panel.width() / std::size(kinds);
    for (const PanelControl::Kind kind : kinds)
        all.push_back({kind, 0,
                       QRectF(panel.left() + (kind - PanelControl::record) * width, panel.top(), width,
                              panel.height())});
}

void PanelPlaces::addRows(const QRectF& panel, int layers) {
    all.push_back(
        {PanelControl::heading, 0, QRectF(panel.topLeft(), QSizeF(panel.width(), headingHeight * scale))});
    const double width = listWidth - (layers > visibleRows ? scrollBarWidth : 0);
    const auto add = [&](PanelControl::Kind kind, int row, double left, double right) {
        const double top = headingHeight + row * rowPitch + 4;
        all.push_back({kind, row,
                       QRectF(panel.left() + left * scale, panel.top() + top * scale, (right - left) * scale,
                              (rowPitch - 8) * scale)});
    };
    for (int row = 0; row < std::min(layers, visibleRows); ++row) {
        add(PanelControl::rowIcon, row, 4, 24);
        add(PanelControl::rowLabel, row, 26, width - 26);
        add(PanelControl::rowTrash, row, width - 24, width);
    }
}

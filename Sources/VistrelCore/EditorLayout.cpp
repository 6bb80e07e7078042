#include "VistrelCore/EditorLayout.h"

#include <array>
#include <initializer_list>
#include <vector>

namespace {

constexpr double margin = 8;
constexpr double gap = 10;
constexpr double layersGap = 8;

// Sizes at scale 1.
constexpr double toolsWidth = 84;
constexpr double toolsRows = 294;
constexpr double sizeStrip = 32;
constexpr double shortestSizeStrip = 20;
constexpr double layersWidth = 156;
constexpr double actionHeight = 44;

/// Points at a scale such as 1.25 carry rounding errors, which must not decide where a panel goes.
constexpr double tolerance = 1e-6;

bool fits(double size, double room) {
    return size <= room + tolerance;
}

bool overlaps(const Rect& a, const Rect& b) {
    return a.insetBy(tolerance).intersects(b);
}

/// The upper bound wins where the two contradict each other.
double bounded(double value, double low, double high) {
    return std::min(high, std::max(value, low));
}

double fittedScale(const EditorLayout::Request& request, Size usable) {
    const double wanted = std::isfinite(request.panelScale) ? bounded(request.panelScale, 0.4, 1.5) : 1.0;
    const double wide = usable.width / std::max(layersWidth, request.actionWidth);
    const double tall = std::max(usable.height - gap, 0.0) / (toolsRows + sizeStrip + actionHeight);
    const double withShortestStrip =
        std::max(usable.height - gap - shortestSizeStrip, 0.0) / (toolsRows + actionHeight);
    return std::min({wanted, wide, tall, withShortestStrip});
}

/// One placement in the making.
class Placement {
public:
    Placement(EditorLayout& target, const EditorLayout::Request& request)
        : layout(target),
          selection(request.selection.standardized()),
          usable(request.bounds.insetBy(margin)) {
        const double scale = fittedScale(request, usable.size());
        layout.scale = scale;
        tools = {toolsWidth * scale, toolsRows * scale + std::max(sizeStrip * scale, shortestSizeStrip)};
        actions = {request.actionWidth * scale, actionHeight * scale};
        layers = {layersWidth * scale, std::min(std::max(usable.height - actions.height - gap, 0.0),
                                                request.layersHeight * scale)};
    }

    void run() {
        placeTools();
        actionsX = bounded(selection.maxX() - actions.width, usable.minX(), usable.maxX() - actions.width);
        if (!pairActionsWithTools())
            placeActionsInside();
        placeLayers();
    }

private:
    bool isUsable(const Rect& panel) const { return usable.insetBy(-tolerance).contains(panel); }

    void placeTools() {
        double x = usable.maxX() - tools.width;
        if (fits(tools.width + gap, usable.maxX() - selection.maxX())) {
            layout.side = EditorLayout::Side::right;
            x = selection.maxX() + gap;
        } else if (fits(tools.width + gap, selection.minX() - usable.minX())) {
            layout.side = EditorLayout::Side::left;
            x = selection.minX() - gap - tools.width;
        } else {
            layout.side = EditorLayout::Side::inside;
        }
        const double y = std::min(usable.maxY() - tools.height,
                                  std::max(selection.minY(), usable.minY() + actions.height + gap));
        layout.tools = {x, y, tools.width, tools.height};
    }

    /// Puts the bar clear of the selection, and the tools clear of the bar.
    bool pairActionsWithTools() {
        for (const double y : {selection.minY() - gap - actions.height, selection.maxY() + gap,
                               usable.maxY() - actions.height}) {
            const Rect bar = {actionsX, y, actions.width, actions.height};
            const bool clear =
                fits(bar.maxY(), selection.minY() - gap) || fits(selection.maxY() + gap, bar.minY());
            if (!isUsable(bar) || !clear)
                continue;
            if (const auto moved = toolsBeside(bar)) {
                layout.actions = bar;
                layout.tools = *moved;
                return true;
            }
        }
        return false;
    }

    std::optional<Rect> toolsBeside(const Rect& bar) const {
        const Rect& first = layout.tools;
        if (!overlaps(first, bar))
            return first;
        std::vector<Point> origins = {{first.x, bar.maxY() + gap},
                                      {first.x, bar.minY() - gap - tools.height}};
        if (layout.side == EditorLayout::Side::inside) {
            origins.push_back({usable.minX(), first.y});
            origins.push_back({usable.maxX() - tools.width, first.y});
        }
        for (const Point origin : origins) {
            const Rect moved = {origin.x, origin.y, tools.width, tools.height};
            if (isUsable(moved) && !overlaps(moved, bar))
                return moved;
        }
        return std::nullopt;
    }

    /// There is no room beside the selection: over it, but if possible not over the tools.
    void placeActionsInside() {
        const double top = usable.maxY() - actions.height;
        const auto barAt = [&](double y) {
            return Rect{actionsX, bounded(y, usable.minY(), top), actions.width, actions.height};
        };
        const std::array bars = {barAt(usable.minY()), barAt(layout.tools.minY() - gap - actions.height),
                                 barAt(layout.tools.maxY() + gap)};
        const auto free = std::find_if(bars.begin(), bars.end(),
                                       [&](const Rect& bar) { return !overlaps(bar, layout.tools); });
        layout.actions = free == bars.end() ? bars.front() : *free;
    }

    void placeLayers() {
        const double top = usable.maxY() - layers.height;
        const double right = usable.maxX() - layers.width;
        const double level = bounded(selection.maxY() - layers.height, usable.minY(), top);
        const double rightOfSelection = selection.maxX() + gap;
        const double leftOfSelection = selection.minX() - gap - layers.width;
        const double flush = bounded(selection.maxX() - layers.width, usable.minX(), right);
        const bool toolsLeft = layout.side == EditorLayout::Side::left;
        const double beside = toolsLeft ? leftOfSelection : rightOfSelection;
        const double beyondTools =
            toolsLeft ? layout.tools.minX() - layersGap - layers.width : layout.tools.maxX() + layersGap;
        for (const Point origin :
             std::initializer_list<Point>{{beside, level},
                                          {beyondTools, level},
                                          {rightOfSelection, level},
                                          {leftOfSelection, level},
                                          {beside, layout.tools.maxY() + layersGap},
                                          {flush, selection.maxY() + gap},
                                          {flush, selection.minY() - gap - layers.height},
                                          {usable.minX(), level},
                                          {usable.minX(), usable.minY()},
                                          {right, level},
                                          {right, usable.minY()}}) {
            layout.layers = {origin.x, origin.y, layers.width, layers.height};
            if (isUsable(layout.layers) && !overlaps(layout.layers, layout.tools) &&
                !overlaps(layout.layers, layout.actions))
                return;
        }
        layout.layers = {usable.minX(), top, layers.width, layers.height};
    }

    EditorLayout& layout;
    Rect selection;
    Rect usable;
    Size tools;
    Size actions;
    Size layers;
    double actionsX = 0;
};

} // namespace

EditorLayout::EditorLayout(const Request& request) {
    Placement(*this, request).run();
}

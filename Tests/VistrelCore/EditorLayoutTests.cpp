#include "VistrelCore/EditorLayout.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <tuple>

namespace {

constexpr Rect display = {0, 0, 1440, 900};

/// The side, where the panels begin and what varies of their sizes.
std::string text(const EditorLayout& layout) {
    constexpr const char* sides[] = {"right", "left", "inside"};
    std::array<char, 100> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%s %g %g, %g %g %g, %g %g", sides[int(layout.side)],
                  layout.tools.x, layout.tools.y, layout.layers.x, layout.layers.y, layout.layers.height,
                  layout.actions.x, layout.actions.y);
    return buffer.data();
}

} // namespace

TEST(EditorLayout, placesThePanelsAroundTheSelection) {
    const struct {
        const char* name;
        Rect selection;
        const char* expected;
        double scale = 0.8;
        Rect bounds = display;
        double layersHeight = 58;
    } rows[] = {
        {"beside", {400, 300, 400, 300}, "right 810 300, 885.2 553.6 46.4, 643.2 254.8"},
        {"layersAboveTheTools", {400, 200, 400, 500}, "right 810 200, 810 653.6 46.4, 643.2 154.8"},
        {"justRoomOnTheRight", {400, 300, 938, 300}, "right 1348 300, 234 542 58, 1142 246", 1},
        {"rightIsFull", {1000, 300, 440, 300}, "left 922.8 300, 790 553.6 46.4, 1275.2 254.8"},
        {"tallOnTheLeft", {1000, 200, 440, 500}, "left 922.8 200, 865.2 653.6 46.4, 1275.2 154.8"},
        {"liftedAboveTheBar", {400, 8, 400, 300}, "right 810 53.2, 885.2 261.6 46.4, 643.2 318"},
        {"heldAtTheTop", {400, 850, 400, 40}, "right 810 631.2, 885.2 843.6 46.4, 643.2 804.8"},
        {"barUnderTheTools", {20, 300, 40, 300}, "right 70 300, 145.2 553.6 46.4, 8 254.8"},
        {"toolsBelowTheBar", {20, 20, 40, 100}, "right 70 175.2, 70 73.6 46.4, 8 130"},
        {"wholeDisplay", display, "inside 1364.8 53.2, 8 845.6 46.4, 1275.2 8"},
        {"fullWidth", {0, 300, 1440, 300}, "inside 1364.8 300, 1307.2 610 46.4, 1275.2 254.8"},
        {"fullWidthAtTheTop", {0, 700, 1440, 200}, "inside 1364.8 384, 8 845.6 46.4, 1275.2 654.8"},
        {"layersCutToTheRoom",
         {400, 100, 300, 300},
         "right 710 100, 785.2 53.2 338.8, 543.2 54.8",
         0.8,
         {0, 0, 1440, 400},
         2000},
    };
    for (const auto& row : rows) {
        const EditorLayout layout({row.selection, row.bounds, row.layersHeight, 196, row.scale});
        EXPECT_EQ(text(layout), row.expected) << row.name;
        EXPECT_EQ(layout.tools.size(), (Size{84 * row.scale, 326 * row.scale})) << row.name;
        EXPECT_EQ(layout.actions.size(), (Size{196 * row.scale, 44 * row.scale})) << row.name;
        EXPECT_EQ(layout.layers.width, 156 * row.scale) << row.name;
    }
}

TEST(EditorLayout, theScaleFitsTheDisplay) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    const std::tuple<const char*, double, Rect, double, double> rows[] = {
        {"asWanted", 0.8, display, 196, 0.8},
        {"atMost", 2, display, 196, 1.5},
        {"atLeast", 0.1, display, 196, 0.4},
        {"noNumber", notANumber, display, 196, 1},
        {"infinite", infinity, display, 196, 1},
        {"barAsWideAsTheDisplay", 1, {0, 0, 114, 900}, 196, 0.5},
        {"layersWiderThanTheBar", 1, {0, 0, 94, 900}, 100, 0.5},
        {"lowDisplay", 1.5, {0, 0, 1440, 396}, 196, 1},
        {"veryLowDisplay", 1, {0, 0, 1440, 215}, 196, 169.0 / 338},
        {"belowTheLeastWantedScale", 1, {0, 0, 35.6, 900}, 196, 0.1},
        {"noRoom", 1, {0, 0, 12, 12}, 196, 0},
        {"noDisplay", 1, {}, 196, 0},
    };
    for (const auto& [name, panelScale, bounds, actionWidth, expected] : rows) {
        const EditorLayout layout({{100, 100, 50, 50}, bounds, 58, actionWidth, panelScale});
        EXPECT_NEAR(layout.scale, expected, 1e-12) << name;
        EXPECT_NEAR(layout.tools.width, 84 * expected, 1e-9) << name;
        EXPECT_TRUE(std::isfinite(layout.tools.x) && std::isfinite(layout.actions.y)) << name;
    }
}

// A selection that moves pixel by pixel takes the bar along: it does not jump to another side in between,
// not even where panels and display are equally high.
TEST(EditorLayout, theBarFollowsASelectionAtEveryScale) {
    for (const double scale : {1.0, 1.1, 1.25, 1.5, 1.75, 2.0})
        for (const double panelScale : {0.8, 1.2}) {
            const Rect bounds = {0, 0, 1920 / scale, 768 / scale};
            for (int top = 31; top < 400; ++top) {
                const double y = bounds.height - (top + 203) / scale;
                const Rect selection = {200 / scale, y, 301 / scale, bounds.height - top / scale - y};
                const EditorLayout layout({selection, bounds, 58, 196, panelScale});
                if (y - 10 - layout.actions.height < 8)
                    break;
                EXPECT_NEAR(layout.actions.maxY(), y - 10, 1e-9) << scale << ' ' << panelScale << ' ' << top;
            }
        }
}

// Whatever the input, panels never cover each other nor leave the display while there is room for them.
TEST(EditorLayout, anySelectionOnAnOrdinaryDisplayKeepsPanelsApart) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int i = 0; i < 5000; ++i) {
        const Rect bounds = {0, 0, 1000 + 2000 * unit(random), 600 + 1500 * unit(random)};
        const double x = bounds.width * unit(random);
        const double y = bounds.height * unit(random);
        const Rect selection = {x, y, (bounds.width - x) * unit(random), (bounds.height - y) * unit(random)};
        const EditorLayout layout({selection, bounds, 58 + 128 * unit(random), 196, 0.4 + unit(random)});
        const Rect usable = bounds.insetBy(8 - 1e-9);
        SCOPED_TRACE(text(layout) + " in round " + std::to_string(i));
        EXPECT_TRUE(usable.contains(layout.tools));
        EXPECT_TRUE(usable.contains(layout.actions));
        EXPECT_TRUE(usable.contains(layout.layers));
        EXPECT_FALSE(layout.tools.intersects(layout.actions));
        EXPECT_FALSE(layout.layers.intersects(layout.actions));
        EXPECT_FALSE(layout.layers.intersects(layout.tools));
    }
}

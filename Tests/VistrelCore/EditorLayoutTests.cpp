#include "VistrelCore/EditorLayout.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <random>

namespace {

using Side = EditorLayout::Side;

constexpr Rect display = {0, 0, 1440, 900};

std::string text(const Rect& rect) {
    std::array<char, 100> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%g %g %g %g", rect.x, rect.y, rect.width, rect.height);
    return buffer.data();
}

std::string text(const EditorLayout& layout) {
    const char* side = layout.side == Side::right ? "right" : layout.side == Side::left ? "left" : "inside";
    return side + ("; " + text(layout.tools)) + "; " + text(layout.layers) + "; " + text(layout.actions);
}

} // namespace

TEST(EditorLayout, placesThePanelsAroundTheSelection) {
    // At scale 0.8: tools 67.2 x 260.8, bar 156.8 x 35.2, layers 124.8 wide. At 1: 84 x 326, 196 x 44, 156.
    const struct {
        const char* name;
        Rect selection;
        /// The side; the tools, the layers and the actions.
        const char* expected;
        double scale = 0.8;
        Rect bounds = display;
        double layersHeight = 58;
    } rows[] = {
        {"besideTheSelection",
         {400, 300, 400, 300},
         "right; 810 300 67.2 260.8; 885.2 553.6 124.8 46.4; 643.2 254.8 156.8 35.2"},
        {"layersAboveTheToolsLevel",
         {400, 200, 400, 500},
         "right; 810 200 67.2 260.8; 810 653.6 124.8 46.4; 643.2 154.8 156.8 35.2"},
        {"exactlyEnoughRoomOnTheRight",
         {400, 300, 938, 300},
         "right; 1348 300 84 326; 234 542 156 58; 1142 246 196 44",
         1},
        {"leftWhenTheRightIsFull",
         {1000, 300, 440, 300},
         "left; 922.8 300 67.2 260.8; 790 553.6 124.8 46.4; 1275.2 254.8 156.8 35.2"},
        {"tallOnTheLeftKeepsLayersNextToIt",
         {1000, 200, 440, 500},
         "left; 922.8 200 67.2 260.8; 865.2 653.6 124.8 46.4; 1275.2 154.8 156.8 35.2"},
        {"liftedAboveTheBar",
         {400, 8, 400, 300},
         "right; 810 53.2 67.2 260.8; 885.2 261.6 124.8 46.4; 643.2 318 156.8 35.2"},
        {"topNeverLeavesTheDisplay",
         {400, 850, 400, 40},
         "right; 810 631.2 67.2 260.8; 885.2 843.6 124.8 46.4; 643.2 804.8 156.8 35.2"},
        {"narrowPushesTheBarUnderTheTools",
         {20, 300, 40, 300},
         "right; 70 300 67.2 260.8; 145.2 553.6 124.8 46.4; 8 254.8 156.8 35.2"},
        {"barAboveMovesTheToolsBelowIt",
         {20, 20, 40, 100},
         "right; 70 175.2 67.2 260.8; 70 73.6 124.8 46.4; 8 130 156.8 35.2"},
        {"wholeDisplay", display, "inside; 1364.8 53.2 67.2 260.8; 8 845.6 124.8 46.4; 1275.2 8 156.8 35.2"},
        {"fullWidthPutsTheBarBelow",
         {0, 300, 1440, 300},
         "inside; 1364.8 300 67.2 260.8; 1307.2 610 124.8 46.4; 1275.2 254.8 156.8 35.2"},
        {"fullWidthAtTheTop",
         {0, 700, 1440, 200},
         "inside; 1364.8 384 67.2 260.8; 8 845.6 124.8 46.4; 1275.2 654.8 156.8 35.2"},
        {"manyLayersAreCutToTheRoom",
         {400, 100, 300, 300},
         "right; 710 100 67.2 260.8; 785.2 53.2 124.8 338.8; 543.2 54.8 156.8 35.2",
         0.8,
         {0, 0, 1440, 400},
         2000},
    };
    for (const auto& row : rows)
        EXPECT_EQ(text(EditorLayout({row.selection, row.bounds, row.layersHeight, 196, row.scale})),
                  row.expected)
            << row.name;
}

TEST(EditorLayout, theScaleFitsTheDisplay) {
    const struct {
        const char* name;
        double panelScale;
        Rect bounds;
        double actionWidth;
        double expected;
    } rows[] = {
        {"asWanted", 0.8, display, 196, 0.8},
        {"atMost", 2, display, 196, 1.5},
        {"atLeast", 0.1, display, 196, 0.4},
        {"noNumber", std::numeric_limits<double>::quiet_NaN(), display, 196, 1},
        {"infinite", std::numeric_limits<double>::infinity(), display, 196, 1},
        {"barAsWideAsTheDisplay", 1, {0, 0, 114, 900}, 196, 0.5},
        {"layersWiderThanTheBar", 1, {0, 0, 94, 900}, 100, 0.5},
        {"lowDisplay", 1.5, {0, 0, 1440, 396}, 196, 1},
        {"veryLowDisplay", 1, {0, 0, 1440, 215}, 196, 169.0 / 338},
        {"belowTheLeastWantedScale", 1, {0, 0, 35.6, 900}, 196, 0.1},
        {"noRoom", 1, {0, 0, 12, 12}, 196, 0},
        {"noDisplay", 1, {}, 196, 0},
    };
    for (const auto& row : rows) {
        const EditorLayout layout({{100, 100, 50, 50}, row.bounds, 58, row.actionWidth, row.panelScale});
        EXPECT_NEAR(layout.scale, row.expected, 1e-12) << row.name;
        EXPECT_NEAR(layout.tools.width, 84 * row.expected, 1e-9) << row.name;
        EXPECT_TRUE(std::isfinite(layout.tools.x) && std::isfinite(layout.actions.y)) << row.name;
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
        SCOPED_TRACE(text(selection) + " in " + text(bounds));
        EXPECT_TRUE(usable.contains(layout.tools));
        EXPECT_TRUE(usable.contains(layout.actions));
        EXPECT_TRUE(usable.contains(layout.layers));
        EXPECT_FALSE(layout.tools.intersects(layout.actions));
        EXPECT_FALSE(layout.layers.intersects(layout.actions));
        EXPECT_FALSE(layout.layers.intersects(layout.tools));
    }
}

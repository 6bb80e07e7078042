#include "VistrelCore/EditorLayout.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Side = EditorLayout::Side;

constexpr Rect display = {0, 0, 1440, 900};
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

void expectNear(const char* what, const Rect& actual, const Rect& expected) {
    SCOPED_TRACE(what);
    EXPECT_NEAR(actual.x, expected.x, 1e-6);
    EXPECT_NEAR(actual.y, expected.y, 1e-6);
    EXPECT_NEAR(actual.width, expected.width, 1e-6);
    EXPECT_NEAR(actual.height, expected.height, 1e-6);
}

} // namespace

struct LayoutCase {
    const char* name;
    EditorLayout::Request request;
    Side side;
    Rect tools;
    Rect layers;
    Rect actions;
};

class EditorLayoutPlaces : public ::testing::TestWithParam<LayoutCase> {};

TEST_P(EditorLayoutPlaces, panels) {
    const LayoutCase& c = GetParam();
    const EditorLayout layout(c.request);
    EXPECT_EQ(layout.side, c.side);
    expectNear("tools", layout.tools, c.tools);
    expectNear("layers", layout.layers, c.layers);
    expectNear("actions", layout.actions, c.actions);
}

// At scale 0.8: tools 67.2 x 260.8, bar 156.8 x 35.2, layers 124.8 wide. At 1: 84 x 326, 196 x 44, 156.
INSTANTIATE_TEST_SUITE_P(EditorLayout, EditorLayoutPlaces,
                         ::testing::ValuesIn(std::vector<LayoutCase>{
                             {"besideTheSelection",
                              {{400, 300, 400, 300}, display, 58, 196, 0.8},
                              Side::right,
                              {810, 300, 67.2, 260.8},
                              {885.2, 553.6, 124.8, 46.4},
                              {643.2, 254.8, 156.8, 35.2}},
                             {"layersAboveTheToolsLevel",
                              {{400, 200, 400, 500}, display, 58, 196, 0.8},
                              Side::right,
                              {810, 200, 67.2, 260.8},
                              {810, 653.6, 124.8, 46.4},
                              {643.2, 154.8, 156.8, 35.2}},
                             {"exactlyEnoughRoomOnTheRight",
                              {{400, 300, 938, 300}, display, 58, 196, 1},
                              Side::right,
                              {1348, 300, 84, 326},
                              {234, 542, 156, 58},
                              {1142, 246, 196, 44}},
                             {"leftWhenTheRightIsFull",
                              {{1000, 300, 440, 300}, display, 58, 196, 0.8},
                              Side::left,
                              {922.8, 300, 67.2, 260.8},
                              {790, 553.6, 124.8, 46.4},
                              {1275.2, 254.8, 156.8, 35.2}},
                             {"leftWithTallSelectionKeepsLayersNextToIt",
                              {{1000, 200, 440, 500}, display, 58, 196, 0.8},
                              Side::left,
                              {922.8, 200, 67.2, 260.8},
                              {865.2, 653.6, 124.8, 46.4},
                              {1275.2, 154.8, 156.8, 35.2}},
                             {"liftedAboveTheBar",
                              {{400, 8, 400, 300}, display, 58, 196, 0.8},
                              Side::right,
                              {810, 53.2, 67.2, 260.8},
                              {885.2, 261.6, 124.8, 46.4},
                              {643.2, 318, 156.8, 35.2}},
                             {"topNeverLeavesTheDisplay",
                              {{400, 850, 400, 40}, display, 58, 196, 0.8},
                              Side::right,
                              {810, 631.2, 67.2, 260.8},
                              {885.2, 843.6, 124.8, 46.4},
                              {643.2, 804.8, 156.8, 35.2}},
                             {"narrowSelectionPushesTheBarUnderTheTools",
                              {{20, 300, 40, 300}, display, 58, 196, 0.8},
                              Side::right,
                              {70, 300, 67.2, 260.8},
                              {145.2, 553.6, 124.8, 46.4},
                              {8, 254.8, 156.8, 35.2}},
                             {"barAboveMovesTheToolsBelowIt",
                              {{20, 20, 40, 100}, display, 58, 196, 0.8},
                              Side::right,
                              {70, 175.2, 67.2, 260.8},
                              {70, 73.6, 124.8, 46.4},
                              {8, 130, 156.8, 35.2}},
                             {"wholeDisplay",
                              {display, display, 58, 196, 0.8},
                              Side::inside,
                              {1364.8, 53.2, 67.2, 260.8},
                              {8, 845.6, 124.8, 46.4},
                              {1275.2, 8, 156.8, 35.2}},
                             {"fullWidthBandPutsTheBarBelowAndTheToolsAboveIt",
                              {{0, 300, 1440, 300}, display, 58, 196, 0.8},
                              Side::inside,
                              {1364.8, 300, 67.2, 260.8},
                              {1307.2, 610, 124.8, 46.4},
                              {1275.2, 254.8, 156.8, 35.2}},
                             {"fullWidthAtTheTopMovesTheToolsOffTheBar",
                              {{0, 700, 1440, 200}, display, 58, 196, 0.8},
                              Side::inside,
                              {1364.8, 384, 67.2, 260.8},
                              {8, 845.6, 124.8, 46.4},
                              {1275.2, 654.8, 156.8, 35.2}},
                             {"manyLayersAreCutToTheRoomOverTheBar",
                              {{400, 100, 300, 300}, {0, 0, 1440, 400}, 2000, 196, 0.8},
                              Side::right,
                              {710, 100, 67.2, 260.8},
                              {785.2, 53.2, 124.8, 338.8},
                              {543.2, 54.8, 156.8, 35.2}},
                         }),
                         [](const auto& row) { return std::string(row.param.name); });

struct ScaleCase {
    const char* name;
    double panelScale;
    Rect bounds;
    double actionWidth;
    double expected;
};

class EditorLayoutScale : public ::testing::TestWithParam<ScaleCase> {};

TEST_P(EditorLayoutScale, fitsTheDisplay) {
    const ScaleCase& c = GetParam();
    const EditorLayout layout({{100, 100, 50, 50}, c.bounds, 58, c.actionWidth, c.panelScale});
    EXPECT_NEAR(layout.scale, c.expected, 1e-12);
}

INSTANTIATE_TEST_SUITE_P(EditorLayout, EditorLayoutScale,
                         ::testing::ValuesIn(std::vector<ScaleCase>{
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
                         }),
                         [](const auto& row) { return std::string(row.param.name); });

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
        SCOPED_TRACE(::testing::Message()
                     << selection.x << " " << selection.y << " " << selection.width << " " << selection.height
                     << " in " << bounds.width << " " << bounds.height << " scale " << layout.scale);
        EXPECT_TRUE(usable.contains(layout.tools));
        EXPECT_TRUE(usable.contains(layout.actions));
        EXPECT_TRUE(usable.contains(layout.layers));
        EXPECT_FALSE(layout.tools.intersects(layout.actions));
        EXPECT_FALSE(layout.layers.intersects(layout.actions));
        EXPECT_FALSE(layout.layers.intersects(layout.tools));
    }
}

TEST(EditorLayout, displayWithoutRoomYieldsEmptyPanels) {
    for (const Rect& bounds : {Rect{}, Rect{0, 0, 10, 10}, Rect{5, 5, 16, 900}}) {
        const EditorLayout layout({{0, 0, 10, 10}, bounds, 58, 196, 1});
        EXPECT_EQ(layout.scale, 0);
        EXPECT_EQ(layout.tools.width, 0);
        EXPECT_EQ(layout.layers.size(), Size{});
        EXPECT_EQ(layout.actions.size(), Size{});
        EXPECT_TRUE(std::isfinite(layout.tools.x) && std::isfinite(layout.actions.y));
    }
}

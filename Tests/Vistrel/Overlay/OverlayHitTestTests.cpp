#include "Overlay/OverlayHitTest.h"

#include <gtest/gtest.h>

namespace {

using Tool = AnnotationTool;

const std::tuple<const char*, Tool, double, std::vector<Point>, Point, bool> hitCases[] = {
    {"textGrownBy4", Tool::text, 24, {{100, 100}, {160, 130}}, {96, 134}, true},
    {"textBelow4", Tool::text, 24, {{100, 100}, {160, 130}}, {110, 96}, false},
    {"textBeyond4", Tool::text, 24, {{100, 100}, {160, 130}}, {95.9, 110}, false},
    {"rectangleOnOutline", Tool::rectangle, 3, {{100, 100}, {200, 200}}, {105, 150}, true},
    {"rectangleInsideIsNoHit", Tool::rectangle, 3, {{100, 100}, {200, 200}}, {106, 150}, false},
    {"rectangleRoundCorner", Tool::rectangle, 3, {{100, 100}, {200, 200}}, {96, 96}, false},
    {"ellipseOnOutline", Tool::ellipse, 3, {{100, 100}, {200, 160}}, {150, 164}, true},
    {"ellipseCentre", Tool::ellipse, 3, {{100, 100}, {200, 160}}, {150, 130}, false},
    {"lineWithin5", Tool::line, 1, {{100, 100}, {200, 100}}, {150, 105}, true},
    {"lineBeyond5", Tool::line, 1, {{100, 100}, {200, 100}}, {150, 105.1}, false},
    {"lineCapIsRound", Tool::line, 1, {{100, 100}, {200, 100}}, {204, 104}, false},
    {"arrowBarb", Tool::arrow, 2, {{100, 100}, {200, 100}}, {188, 111}, true},
    {"arrowDotBarb", Tool::arrow, 2, {{100, 100}, {100, 100}}, {88, 111}, true},
    {"arrowDotTip", Tool::arrow, 2, {{100, 100}, {100, 100}}, {104, 100}, true},
    {"penDot", Tool::pen, 3, {{100, 100}, {100, 100}}, {103, 103}, true},
    {"penBetweenPoints", Tool::pen, 3, {{100, 100}, {150, 150}, {200, 100}}, {175, 128}, true},
    {"penInTheAngle", Tool::pen, 3, {{100, 100}, {150, 150}, {200, 100}}, {150, 110}, false},
};

TEST(OverlayHitTestTests, layers) {
    for (const auto& [name, tool, width, points, p, hit] : hitCases) {
        EditorAnnotation layer;
        layer.tool = tool;
        layer.width = width;
        layer.points = points;
        EXPECT_EQ(OverlayHitTest::hits(layer, p), hit) << name;
    }
}

} // namespace

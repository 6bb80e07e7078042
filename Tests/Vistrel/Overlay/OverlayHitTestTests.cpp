#include "Overlay/CanvasCursor.h"
#include "Vistrel/Overlay/OverlayFixture.h"

namespace {

using Tool = AnnotationTool;

struct HitCase {
    const char* name;
    Tool tool;
    double width;
    std::vector<Point> points;
    Point p;
    bool hit;
};

const HitCase hitCases[] = {
    {"textGrownBy4", Tool::text, 24, {{100, 100}, {160, 130}}, {96, 96}, true},
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
    {"penDot", Tool::pen, 3, {{100, 100}, {100, 100}}, {103, 103}, true},
    {"penBetweenPoints", Tool::pen, 3, {{100, 100}, {150, 150}, {200, 100}}, {175, 128}, true},
    {"penInTheAngle", Tool::pen, 3, {{100, 100}, {150, 150}, {200, 100}}, {150, 110}, false},
};

TEST(OverlayHitTestTests, layers) {
    for (const HitCase& row : hitCases) {
        EditorAnnotation layer;
        layer.tool = row.tool;
        layer.width = row.width;
        layer.points = row.points;
        EXPECT_EQ(OverlayHitTest::hits(layer, row.p), row.hit) << row.name;
    }
}

using Shape = CanvasCursor::Shape;

constexpr CanvasCursor resizing(int handle) {
    return {.shape = Shape::resize, .handle = handle};
}

struct CursorCase {
    const char* name;
    Tool tool;
    std::optional<Point> held;
    Point at;
    CanvasCursor expected;
};
const CursorCase cursorCases[] = {
    {"inside", Tool::select, {}, {200, 120}, {.shape = Shape::openHand}},
    {"outside", Tool::select, {}, {380, 280}, {}},
    {"edge", Tool::select, {}, {200, 250}, resizing(5)},
    {"corner", Tool::select, {}, {50, 250}, resizing(6)},
    {"layerCorner1", Tool::select, {}, {197, 104}, resizing(2)},
    {"layerCorner3", Tool::select, {}, {103, 197}, resizing(6)},
    {"brush", Tool::pen, {}, {200, 120}, {.shape = Shape::brush, .diameter = 3}},
    {"shape", Tool::rectangle, {}, {200, 120}, {}},
    {"text", Tool::text, {}, {200, 120}, {.shape = Shape::iBeam}},
    {"noHandlesForATool", Tool::text, {}, {50, 250}, {}},
    {"moving", Tool::select, {{300, 150}}, {0, 0}, {.shape = Shape::closedHand}},
    {"resizing", Tool::select, {{50, 250}}, {200, 150}, resizing(6)},
    {"layerResizing", Tool::select, {{200, 200}}, {150, 150}, resizing(4)},
    {"selecting", Tool::select, {{10, 10}}, {200, 150}, {}},
};

class CanvasCursorTests : public OverlayFixture {};

TEST_F(CanvasCursorTests, followsTheToolTheGestureAndThePlace) {
    EXPECT_EQ(CanvasCursor::at({100, 100}, document, false), CanvasCursor{}) << "nothing selected";
    for (const CursorCase& row : cursorCases) {
        document.state = {};
        select();
        addSelected(Tool::rectangle, {{100, 100}, {200, 200}});
        document.tool = row.tool;
        if (row.held)
            press(*row.held);
        EXPECT_EQ(CanvasCursor::at(row.at, document, false), row.expected) << row.name;
        EXPECT_EQ(CanvasCursor::at(row.at, document, true),
                  row.held ? row.expected : CanvasCursor{.shape = Shape::arrow})
            << row.name;
        if (row.held)
            release(*row.held);
    }
}

} // namespace

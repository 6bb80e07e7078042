#include "Overlay/CanvasCursor.h"
#include "Vistrel/Overlay/OverlayFixture.h"

#include <numbers>

namespace {

struct HitCase {
    const char* name;
    AnnotationTool tool;
    double width;
    std::vector<Point> points;
    Point p;
    bool hit;
};

const HitCase hitCases[] = {
    {"textGrownBy4", AnnotationTool::text, 24, {{100, 100}, {160, 130}}, {96, 96}, true},
    {"textBeyond4", AnnotationTool::text, 24, {{100, 100}, {160, 130}}, {95.9, 110}, false},
    {"pixelateInside", AnnotationTool::pixelate, 12, {{100, 100}, {160, 130}}, {130, 115}, true},
    {"rectangleOnOutline", AnnotationTool::rectangle, 3, {{100, 100}, {200, 200}}, {105, 150}, true},
    {"rectangleInsideIsNoHit", AnnotationTool::rectangle, 3, {{100, 100}, {200, 200}}, {106, 150}, false},
    {"rectangleRoundCorner", AnnotationTool::rectangle, 3, {{100, 100}, {200, 200}}, {96, 96}, false},
    {"rectangleWideStroke", AnnotationTool::rectangle, 20, {{100, 100}, {200, 200}}, {109, 150}, true},
    {"ellipseOnOutline", AnnotationTool::ellipse, 3, {{100, 100}, {200, 160}}, {150, 164}, true},
    {"ellipseCornerOfBox", AnnotationTool::ellipse, 3, {{100, 100}, {200, 160}}, {102, 102}, false},
    {"ellipseCentre", AnnotationTool::ellipse, 3, {{100, 100}, {200, 160}}, {150, 130}, false},
    {"lineWithin5", AnnotationTool::line, 1, {{100, 100}, {200, 100}}, {150, 105}, true},
    {"lineBeyond5", AnnotationTool::line, 1, {{100, 100}, {200, 100}}, {150, 105.1}, false},
    {"lineRoundCap", AnnotationTool::line, 1, {{100, 100}, {200, 100}}, {204.9, 100}, true},
    {"lineCapIsRound", AnnotationTool::line, 1, {{100, 100}, {200, 100}}, {204, 104}, false},
    {"arrowBarb", AnnotationTool::arrow, 2, {{100, 100}, {200, 100}}, {188, 111}, true},
    {"penDot", AnnotationTool::pen, 3, {{100, 100}, {100, 100}}, {103, 103}, true},
    {"rectangleDot", AnnotationTool::rectangle, 3, {{100, 100}, {100, 100}}, {103, 103}, true},
    {"penBetweenPoints", AnnotationTool::pen, 3, {{100, 100}, {150, 150}, {200, 100}}, {175, 128}, true},
    {"penInTheAngle", AnnotationTool::pen, 3, {{100, 100}, {150, 150}, {200, 100}}, {150, 110}, false},
    {"noPoints", AnnotationTool::pen, 3, {}, {0, 0}, false},
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

// The stroke of a path with round caps and joins says the same as the distance to the path.
TEST(OverlayHitTestTests, agreesWithAStrokedPath) {
    EditorAnnotation layer;
    for (int i = 0; i < 60; ++i) {
        const double t = i * 0.35;
        layer.points.push_back({150 + 90 * std::sin(t) * std::cos(0.2 * t), 150 + 80 * std::cos(1.3 * t)});
    }
    for (const auto& [tool, width] : {std::pair(AnnotationTool::pen, 3.0), {AnnotationTool::marker, 16.0}}) {
        layer.tool = tool;
        layer.width = width;
        QPainterPathStroker stroker;
        stroker.setWidth(std::max(width, 10.0));
        stroker.setCapStyle(Qt::RoundCap);
        stroker.setJoinStyle(Qt::RoundJoin);
        stroker.setCurveThreshold(0.01);
        QPainterPath outline = stroker.createStroke(layer.path());
        outline.setFillRule(Qt::WindingFill);
        int differences = 0;
        for (int x = 40; x < 260; x += 3) {
            for (int y = 40; y < 260; y += 3)
                differences +=
                    OverlayHitTest::hits(layer, {double(x), double(y)}) != outline.contains(QPointF(x, y));
        }
        EXPECT_LE(differences, 8) << "of 5476 places, at the very rim";
    }
}

TEST(OverlayHitTestTests, theTopmostLayerWins) {
    OverlayDocument document;
    for (int i = 0; i < 2; ++i) {
        EditorAnnotation layer;
        layer.id = QUuid::createUuid();
        layer.tool = AnnotationTool::pixelate;
        layer.points = {{0, 0}, {50, 50}};
        document.state.annotations.push_back(layer);
    }
    EXPECT_EQ(OverlayHitTest::layerAt(document, {10, 10}), &document.state.annotations[1]);
    EXPECT_EQ(OverlayHitTest::layerAt(document, {90, 10}), nullptr);
}

using Shape = CanvasCursor::Shape;

constexpr CanvasCursor resizing(int handle) {
    return {.shape = Shape::resize, .handle = handle};
}

struct CursorCase {
    const char* name;
    AnnotationTool tool;
    std::optional<Point> held;
    Point at;
    CanvasCursor expected;
};
const CursorCase cursorCases[] = {
    {"inside", AnnotationTool::select, {}, {200, 120}, {.shape = Shape::openHand}},
    {"outside", AnnotationTool::select, {}, {380, 280}, {}},
    {"edge", AnnotationTool::select, {}, {200, 250}, resizing(5)},
    {"corner", AnnotationTool::select, {}, {50, 250}, resizing(6)},
    {"layerCorner1", AnnotationTool::select, {}, {197, 104}, resizing(2)},
    {"layerCorner3", AnnotationTool::select, {}, {103, 197}, resizing(6)},
    {"brush", AnnotationTool::pen, {}, {200, 120}, {.shape = Shape::brush, .diameter = 3}},
    {"shape", AnnotationTool::rectangle, {}, {200, 120}, {}},
    {"text", AnnotationTool::text, {}, {200, 120}, {.shape = Shape::iBeam}},
    {"noHandlesForATool", AnnotationTool::text, {}, {50, 250}, {}},
    {"moving", AnnotationTool::select, {{300, 150}}, {0, 0}, {.shape = Shape::closedHand}},
    {"resizing", AnnotationTool::select, {{50, 250}}, {200, 150}, resizing(6)},
    {"layerResizing", AnnotationTool::select, {{200, 200}}, {150, 150}, resizing(4)},
    {"selecting", AnnotationTool::select, {{10, 10}}, {200, 150}, {}},
};

class CanvasCursorTests : public OverlayFixture {};

TEST_F(CanvasCursorTests, followsTheToolTheGestureAndThePlace) {
    EXPECT_EQ(CanvasCursor::at({100, 100}, document, false), CanvasCursor{}) << "nothing selected";
    for (const CursorCase& row : cursorCases) {
        document.state = {};
        select();
        addSelected(AnnotationTool::rectangle, {{100, 100}, {200, 200}});
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

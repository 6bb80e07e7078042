#include "Vistrel/Overlay/OverlayFixture.h"

#include <gmock/gmock.h>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class GestureMachineTests : public OverlayFixture {};

TEST_F(GestureMachineTests, smallDragsLeaveEverythingAsItWas) {
    select();
    const QUuid id = addSelected(AnnotationTool::line, {{60, 60}, {100, 100}}).id;
    document.tool = AnnotationTool::pen;

    press({10, 10});
    drag({16, 16});
    EXPECT_EQ(document.selection, (Rect{10, 10, 6, 6}));
    EXPECT_THAT(layers(), IsEmpty());
    EXPECT_EQ(document.tool, AnnotationTool::select);
    EXPECT_TRUE(document.isCreatingSelection());
    drag({15, 30});
    EXPECT_EQ(document.selection, (Rect{50, 50, 300, 200}));
    EXPECT_EQ(layers().size(), 1U);
    EXPECT_EQ(document.state.selectedID, id);
    EXPECT_EQ(document.tool, AnnotationTool::pen);
    release({15, 15});
    EXPECT_THAT(actions, IsEmpty());
    EXPECT_EQ(selections, 0);
    EXPECT_FALSE(document.drag);
}

TEST_F(GestureMachineTests, aSelectionIsMeasuredInImagePixels) {
    show({200, 150}, {400, 300}, 2);
    stroke({{20, 20}, {22.5, 40}});
    EXPECT_FALSE(document.hasSelection()) << "5 pixels wide";
    stroke({{20, 20}, {23, 40}});
    EXPECT_EQ(document.selection, (Rect{20, 20, 3, 20}));
}

TEST_F(GestureMachineTests, aNewSelectionStartsANewDocument) {
    select();
    add(AnnotationTool::line, {{60, 60}, {100, 100}});
    document.history.record({}, document.state);
    stroke({{5, 5}, {40, 40}});
    EXPECT_THAT(actions, ElementsAre(Action::selectionCreated));
    EXPECT_EQ(selections, 1);
    editor.layers.undo();
    EXPECT_THAT(layers(), IsEmpty());
}

TEST_F(GestureMachineTests, theLastRowAndColumnMeanTheEdge) {
    stroke({{100, 100}, {399, 1}});
    EXPECT_EQ(document.selection, (Rect{100, 0, 300, 100}));
    document.selection = {};
    stroke({{399, 200}, {1, 300}});
    EXPECT_EQ(document.selection, (Rect{1, 200, 399, 100}));
}

struct SelectionDragCase {
    const char* name;
    Rect original;
    Point from, to;
    Rect expected;
};
const SelectionDragCase selectionDragCases[] = {
    {"moveInside", {50, 50, 300, 200}, {100, 100}, {110, 90}, {60, 40, 300, 200}},
    {"moveAgainstRightEdgeKeepsWidth", {50, 50, 300, 200}, {100, 100}, {400, 100}, {100, 50, 300, 200}},
    {"moveAgainstBottomLeft", {50, 50, 300, 200}, {100, 100}, {0, 0}, {0, 0, 300, 200}},
    {"cornerHitAt8Outside", {50, 50, 300, 200}, {42, 42}, {30, 20}, {30, 20, 320, 230}},
    {"topEdgeHitAt8Outside", {50, 50, 300, 200}, {200, 258}, {10, 280}, {50, 50, 300, 230}},
    {"edgeZoneRunsAlongTheEdge", {50, 50, 300, 200}, {358, 70}, {380, 250}, {50, 50, 330, 200}},
    {"edge9OutsideIsNewSelection", {50, 50, 300, 200}, {359, 70}, {380, 100}, {359, 70, 21, 30}},
    {"acrossTheOppositeEdgeFlips", {50, 50, 300, 200}, {350, 150}, {20, 150}, {20, 50, 30, 200}},
    {"topLeftCornerMovesBoth", {50, 50, 300, 200}, {50, 250}, {70, 230}, {70, 50, 280, 180}},
    {"heldToTheView", {50, 50, 300, 200}, {350, 250}, {900, 900}, {50, 50, 350, 250}},
};

TEST_F(GestureMachineTests, dragsOfTheSelection) {
    for (const SelectionDragCase& row : selectionDragCases) {
        SCOPED_TRACE(row.name);
        select(row.original);
        stroke({row.from, row.to});
        EXPECT_EQ(document.selection, row.expected);
        EXPECT_EQ(undoSteps(), 0U) << "selections are no undo steps";
    }
}

TEST_F(GestureMachineTests, pressInsideDeselectsTheLayerAndMovesTheSelection) {
    select();
    addSelected(AnnotationTool::rectangle, {{100, 100}, {200, 200}});
    stroke({{150, 150}, {160, 150}});
    EXPECT_FALSE(document.state.selectedID);
    EXPECT_EQ(document.selection.x, 60);
    EXPECT_THAT(actions, ElementsAre(Action::selectionMoved));
    EXPECT_EQ(layers().front().points.front(), (Point{100, 100})) << "layers stay where they are";
}

TEST_F(GestureMachineTests, movesALayerWithinTheSelection) {
    select();
    const EditorAnnotation layer = add(AnnotationTool::line, {{100, 100}, {140, 120}});
    press({120, 110});
    drag({1000, 112});
    EXPECT_EQ(layers().front().geometryBounds(), (Rect{310, 102, 40, 20}));
    release({130, 110});
    EXPECT_EQ(layers().front().geometryBounds(), (Rect{110, 100, 40, 20}));
    EXPECT_THAT(actions, ElementsAre(Action::layerMoved));
    EXPECT_EQ(undoSteps(), 1U);
    EXPECT_EQ(document.state.selectedID, layer.id);
}

TEST_F(GestureMachineTests, aPressOnALayerWithoutMovingLeavesNoUndoStep) {
    select();
    add(AnnotationTool::line, {{100, 100}, {140, 120}});
    stroke({{120, 110}});
    EXPECT_TRUE(document.state.selectedID);
    EXPECT_EQ(undoSteps(), 0U);
}

TEST_F(GestureMachineTests, resizesALayerByItsCorner) {
    select();
    addSelected(AnnotationTool::rectangle, {{100, 100}, {200, 180}});
    press({106, 174 + 12});
    ASSERT_TRUE(std::holds_alternative<ResizeAnnotation>(*document.drag)) << "within 7 points of corner 3";
    drag({80, 200});
    EXPECT_EQ(layers().front().geometryBounds(), (Rect{80, 100, 120, 100}));
    drag({199.5, 101});
    EXPECT_EQ(layers().front().geometryBounds(), (Rect{80, 100, 120, 100})) << "no smaller than a point";
    release({0, 290});
    EXPECT_EQ(layers().front().geometryBounds(), (Rect{50, 100, 150, 150})) << "held to the selection";
    EXPECT_THAT(actions, ElementsAre(Action::layerResized));
}

TEST_F(GestureMachineTests, aFlatLayerKeepsItsShape) {
    select();
    addSelected(AnnotationTool::marker, {{100, 100}, {200, 100}});
    stroke({{200, 100}, {250, 150}});
    EXPECT_EQ(layers().front().geometryBounds(), (Rect{100, 100, 100, 0}));
}

TEST_F(GestureMachineTests, dragsTheEndOfAnArrow) {
    select();
    addSelected(AnnotationTool::arrow, {{100, 100}, {200, 180}});
    stroke({{203, 178}, {1000, 120}});
    EXPECT_EQ(layers().front().points, (std::vector<Point>{{100, 100}, {350, 120}}));
    EXPECT_THAT(actions, ElementsAre(Action::layerResized));
    EXPECT_EQ(undoSteps(), 1U);
}

struct DrawingCase {
    const char* name;
    AnnotationTool tool;
    std::vector<Point> points;
    double width;
};

TEST_F(GestureMachineTests, drawsALayerWithEachKindOfTool) {
    const DrawingCase cases[] = {
        {"penTakesEveryPoint",
         AnnotationTool::pen,
         {{60, 60}, {60, 60}, {60, 60}, {70, 65}, {20, 80}, {20, 80}},
         3},
        {"markerToo",
         AnnotationTool::marker,
         {{60, 60}, {60, 60}, {60, 60}, {70, 65}, {20, 80}, {20, 80}},
         16},
        {"lineKeepsTwo", AnnotationTool::line, {{60, 60}, {20, 80}}, 3},
        {"pixelateKeepsTwo", AnnotationTool::pixelate, {{60, 60}, {20, 80}}, 12},
    };
    for (const DrawingCase& row : cases) {
        SCOPED_TRACE(row.name);
        document.state = {};
        document.history.clear();
        select();
        document.tool = row.tool;
        stroke({{60, 60}, {70, 65}, {20, 80}});
        ASSERT_EQ(layers().size(), 1U);
        EXPECT_EQ(layers().front().points, row.points);
        EXPECT_EQ(layers().front().width, row.width);
        EXPECT_EQ(document.state.selectedID, layers().front().id);
        EXPECT_THAT(actions, ElementsAre(Action::layerCreated));
        EXPECT_EQ(undoSteps(), 1U);
    }
}

TEST_F(GestureMachineTests, reducedDensityDoublesWidths) {
    show({400, 300}, {400, 300}, 2);
    ASSERT_TRUE(document.reducedRetina);
    select();
    document.tool = AnnotationTool::pen;
    stroke({{60, 60}, {70, 65}});
    EXPECT_EQ(layers().front().width, 6);
    EXPECT_EQ(layers().front().size, 3);
    show({400, 300}, {800, 600}, 2);
    EXPECT_FALSE(document.reducedRetina);
    EXPECT_EQ(document.widthForSize(3), 1.5);
}

TEST_F(GestureMachineTests, doubleClicks) {
    select();
    press({10, 10}, 2);
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(document.drag);
    press({100, 100}, 2);
    EXPECT_EQ(closed, 1) << "inside is no way out";
    release({100, 100});
    doubleClickCancels = false;
    press({10, 10}, 2);
    drag({30, 30});
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(document.selection, (Rect{10, 10, 20, 20}));
}

TEST_F(GestureMachineTests, doubleClickOutsideDropsTextAndGesture) {
    select();
    document.tool = AnnotationTool::text;
    press({100, 100});
    ASSERT_TRUE(typed);
    typed->setup.text = QStringLiteral("lost");
    press({10, 10}, 2);
    EXPECT_FALSE(typed);
    EXPECT_THAT(layers(), IsEmpty());
    EXPECT_EQ(closed, 1);
}

TEST_F(GestureMachineTests, aDoubleClickOnATextEditsIt) {
    select();
    EditorAnnotation& layer = add(AnnotationTool::text, {{100, 100}, {160, 130}}, 24);
    layer.text = QStringLiteral("hello");
    press({120, 110}, 2);
    ASSERT_TRUE(typed);
    EXPECT_EQ(typed->setup.text, QStringLiteral("hello"));
    EXPECT_EQ(typed->setup.anchor, (Point{100, 130}));
    drag({150, 120});
    release({150, 120});
    EXPECT_EQ(layers().front().points.front(), (Point{100, 100})) << "no drag was begun";
}

TEST_F(GestureMachineTests, commandsDuringAGestureDoNotReachOtherLayers) {
    select();
    const EditorAnnotation other = add(AnnotationTool::pen, {{60, 60}, {70, 70}});
    document.tool = AnnotationTool::pen;
    press({100, 100});
    drag({110, 110});
    key(Key::deleteKey);
    drag({120, 120});
    release({120, 120});
    EXPECT_THAT(layers(), ElementsAre(other));

    press({100, 100});
    drag({110, 110});
    editor.layers.undo();
    EXPECT_THAT(layers(), ElementsAre(other)) << "the half-made layer was recorded, then undone";
    drag({130, 130});
    release({130, 130});
    EXPECT_THAT(layers(), ElementsAre(other));
}

TEST_F(GestureMachineTests, nothingHappensWithoutAPicture) {
    document.reset({}, 1, {400, 300});
    stroke({{10, 10}, {100, 100}});
    EXPECT_FALSE(document.hasSelection());
    EXPECT_EQ(canvasFocused, 0);
}

} // namespace

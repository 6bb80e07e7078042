#include "Vistrel/Overlay/OverlayFixture.h"

#include <gmock/gmock.h>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Tool = AnnotationTool;

class GestureMachineTests : public OverlayFixture {};

TEST_F(GestureMachineTests, smallDragsLeaveEverythingAsItWas) {
    select();
    const QUuid id = addSelected(Tool::line, {{60, 60}, {100, 100}}).id;
    document.tool = Tool::pen;

    press({10, 10});
    drag({16, 16});
    EXPECT_EQ(document.selection, (Rect{10, 10, 6, 6}));
    EXPECT_THAT(layers(), IsEmpty());
    EXPECT_EQ(document.tool, Tool::select);
    EXPECT_TRUE(document.isCreatingSelection());
    drag({15, 30});
    EXPECT_EQ(document.selection, (Rect{50, 50, 300, 200}));
    EXPECT_EQ(layers().size(), 1U);
    EXPECT_EQ(document.state.selectedID, id);
    EXPECT_EQ(document.tool, Tool::pen);
    release({15, 15});
    EXPECT_THAT(actions, IsEmpty());
    EXPECT_FALSE(document.drag);
}

TEST_F(GestureMachineTests, aSelectionIsMeasuredInImagePixels) {
    show({200, 150}, {400, 300}, 2);
    stroke({{20, 20}, {22.5, 40}});
    EXPECT_FALSE(document.hasSelection()) << "5 pixels wide";
    stroke({{20, 20}, {23, 40}});
    EXPECT_EQ(document.selection, (Rect{20, 20, 3, 20}));
}

const std::tuple<const char*, Point, Point, Rect> selectionDragCases[] = {
    {"moveInside", {100, 100}, {110, 90}, {60, 40, 300, 200}},
    {"moveAgainstRightEdgeKeepsWidth", {100, 100}, {400, 100}, {100, 50, 300, 200}},
    {"moveAgainstBottomLeft", {100, 100}, {0, 0}, {0, 0, 300, 200}},
    {"cornerHitAt8Outside", {42, 42}, {30, 20}, {30, 20, 320, 230}},
    {"topEdgeHitAt8Outside", {200, 258}, {10, 280}, {50, 50, 300, 230}},
    {"edgeZoneRunsAlongTheEdge", {358, 70}, {380, 250}, {50, 50, 330, 200}},
    {"edge9OutsideIsNewSelection", {359, 70}, {380, 100}, {359, 70, 21, 30}},
    {"acrossTheOppositeEdgeFlips", {350, 150}, {20, 150}, {20, 50, 30, 200}},
    {"topLeftCornerMovesBoth", {50, 250}, {70, 230}, {70, 50, 280, 180}},
    {"heldToTheView", {350, 250}, {900, 900}, {50, 50, 350, 250}},
    {"lastColumnAndRowMeanTheEdge", {370, 40}, {399, 1}, {370, 0, 30, 40}},
};

TEST_F(GestureMachineTests, dragsOfTheSelection) {
    for (const auto& [name, from, to, expected] : selectionDragCases) {
        SCOPED_TRACE(name);
        select();
        stroke({from, to});
        EXPECT_EQ(document.selection, expected);
        EXPECT_EQ(undoSteps(), 0U) << "selections are no undo steps";
    }
}

const std::tuple<const char*, Tool, std::vector<Point>, std::vector<Point>, Rect> layerDragCases[] = {
    {"moves", Tool::line, {{90, 90}, {140, 120}}, {{115, 105}, {125, 105}}, {100, 90, 50, 30}},
    {"onlyPressed", Tool::line, {{90, 90}, {140, 120}}, {{115, 105}}, {90, 90, 50, 30}},
    {"movesInside", Tool::line, {{90, 90}, {140, 120}}, {{115, 105}, {999, 99}}, {300, 84, 50, 30}},
    {"corner7Off", Tool::rectangle, {{90, 90}, {200, 180}}, {{96, 186}, {80, 200}}, {80, 90, 120, 110}},
    {"above1", Tool::text, {{90, 90}, {199, 180}}, {{90, 180}, {80, 199}, {198, 91}}, {80, 90, 119, 109}},
    {"growsInside", Tool::rectangle, {{90, 90}, {200, 180}}, {{90, 180}, {0, 290}}, {50, 90, 150, 160}},
    {"flatStays", Tool::marker, {{90, 90}, {200, 90}}, {{200, 90}, {250, 150}}, {90, 90, 110, 0}},
    {"arrowEnd", Tool::arrow, {{90, 90}, {200, 180}}, {{203, 178}, {999, 120}}, {90, 90, 260, 30}},
};

TEST_F(GestureMachineTests, dragsOfALayer) {
    for (const auto& [name, tool, points, path, expected] : layerDragCases) {
        SCOPED_TRACE(name);
        document.state = {};
        document.history.clear();
        select();
        const EditorAnnotation before = addSelected(tool, points);
        stroke(path);
        EXPECT_EQ(layers().front().geometryBounds(), expected);
        EXPECT_EQ(document.state.selectedID, before.id);
        EXPECT_EQ(undoSteps(), layers().front() == before ? 0U : 1U);
        EXPECT_EQ(actions.back(), tool == Tool::line ? Action::layerMoved : Action::layerResized);
    }
}

TEST_F(GestureMachineTests, layersStayWhenTheSelectionMovesAndGoWhenANewOneIsMade) {
    select();
    addSelected(Tool::rectangle, {{100, 100}, {200, 200}});
    document.history.record({}, document.state);
    stroke({{150, 150}, {160, 150}});
    EXPECT_FALSE(document.state.selectedID);
    EXPECT_EQ(document.selection.x, 60);
    EXPECT_EQ(layers().front().points.front(), (Point{100, 100}));
    stroke({{5, 5}, {40, 40}});
    EXPECT_THAT(actions, ElementsAre(Action::selectionMoved, Action::selectionCreated));
    editor.layers.undo();
    EXPECT_THAT(layers(), IsEmpty()) << "its history went with them";
}

TEST_F(GestureMachineTests, aDoubleClickOutsideClosesOnlyWhenThePreferenceSaysSo) {
    select();
    doubleClickCancels = false;
    press({10, 10}, 2);
    drag({30, 30});
    EXPECT_EQ(document.selection, (Rect{10, 10, 20, 20}));
    EXPECT_EQ(closed, 0);
    doubleClickCancels = true;
    press({15, 15}, 2);
    EXPECT_EQ(closed, 0) << "inside is no way out";
    press({100, 100}, 2);
    EXPECT_EQ(closed, 0) << "the first click was inside";
    stroke({{100, 100}, {130, 130}});
    press({99, 99}, 2);
    EXPECT_EQ(closed, 0) << "the first press made a selection";
    release({99, 99});
    stroke({{50, 50}});
    press({50, 50}, 2);
    EXPECT_EQ(closed, 1);
}

TEST_F(GestureMachineTests, whatInterruptsAGestureFinishesItFirst) {
    const std::pair<const char*, std::function<void()>> interruptions[] = {
        {"copied", [&] { editor.output.copySelection(); }},
        {"saved", [&] { editor.output.saveSelection(); }},
        {"shared", [&] { editor.output.imageToShare(); }},
        {"pressedAgain",
         [&] {
             stroke({{10, 10}});
         }},
    };
    for (const auto& [name, interrupt] : interruptions) {
        SCOPED_TRACE(name);
        document.state = {};
        document.history.clear();
        select();
        document.tool = Tool::pen;
        press({100, 100});
        drag({110, 110});
        interrupt();
        release({120, 120});
        EXPECT_THAT(actions, ElementsAre(Action::layerCreated));
        ASSERT_EQ(layers().size(), 1U);
        EXPECT_EQ(layers().front().points.back(), (Point{110, 110}));
        editor.layers.undo();
        EXPECT_THAT(layers(), IsEmpty());
        EXPECT_EQ(undoSteps(), 0U);
    }
}

TEST_F(GestureMachineTests, commandsDuringAGestureDoNotReachOtherLayers) {
    select();
    const EditorAnnotation other = add(Tool::pen, {{60, 60}, {70, 70}});
    document.tool = Tool::pen;
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

} // namespace

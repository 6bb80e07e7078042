#include "Annotations/AnnotationHistory.h"

#include <gtest/gtest.h>

#include <numbers>

namespace {

EditorAnnotation layer(AnnotationTool tool, std::vector<Point> points, double width = 2) {
    return {.id = QUuid::createUuid(),
            .tool = tool,
            .width = width,
            .color = Qt::red,
            .points = std::move(points)};
}

EditorState stateOf(int number) {
    EditorState state;
    state.annotations.push_back(
        {.id = QUuid(), .tool = AnnotationTool::pen, .width = double(number), .points = {{1, 1}}});
    return state;
}

} // namespace

TEST(EditorAnnotation, arrowHasBarbsOfThirtyDegrees) {
    for (const auto& [width, length] : {std::pair{2.0, 14.0}, std::pair{10.0, 30.0}}) {
        const Point tip{-60, -80};
        const EditorAnnotation arrow = layer(AnnotationTool::arrow, {{0, 0}, tip}, width);
        const QPainterPath path = arrow.path();
        ASSERT_EQ(path.elementCount(), 6);
        for (const int barb : {3, 5}) {
            const Point back = {path.elementAt(barb).x - tip.x, path.elementAt(barb).y - tip.y};
            EXPECT_NEAR(std::hypot(back.x, back.y), length, 1e-9);
            const double cosine = -(back.x * tip.x + back.y * tip.y) / (100 * length);
            EXPECT_NEAR(std::acos(cosine), std::numbers::pi / 6, 1e-9);
            EXPECT_TRUE(arrow.paintedBounds().contains(tip + back));
        }
        EXPECT_NE(QPointF(path.elementAt(3)), QPointF(path.elementAt(5)));
    }
}

TEST(EditorAnnotation, resizingCarriesThePointsAlong) {
    const EditorAnnotation pen = layer(AnnotationTool::pen, {{10, 10}, {20, 30}, {30, 20}});
    EXPECT_EQ(pen.resizedTo({0, 0, 10, 40}).points, (std::vector<Point>{{0, 0}, {5, 40}, {10, 20}}));
    EXPECT_EQ(pen.resizedTo({10, 40, -10, -40}).points, (std::vector<Point>{{0, 0}, {5, 40}, {10, 20}}));
    const EditorAnnotation flat = layer(AnnotationTool::line, {{10, 5}, {20, 5}});
    EXPECT_EQ(flat.resizedTo({0, 50, 100, 80}).points, (std::vector<Point>{{0, 50}, {100, 50}}));
}

TEST(AnnotationHistory, recordsOnlyChangesOfLayers) {
    AnnotationHistory history;
    history.record(stateOf(1), stateOf(2));
    ASSERT_TRUE(history.undo(stateOf(2)));
    EditorState selected = stateOf(1);
    selected.selectedID = QUuid::createUuid();
    history.record(stateOf(1), selected);
    EXPECT_TRUE(history.past.empty());
    EXPECT_EQ(history.future.size(), 1U) << "a change of nothing keeps what can be redone";
    history.record(stateOf(1), stateOf(3));
    EXPECT_TRUE(history.future.empty());
}

TEST(AnnotationHistory, keepsTheLatestHundredSteps) {
    AnnotationHistory history;
    for (int i = 0; i < 101; ++i)
        history.record(stateOf(i), stateOf(i + 1));
    EXPECT_EQ(history.past.size(), AnnotationHistory::limit);
    EditorState current = stateOf(101);
    while (const auto earlier = history.undo(current))
        current = *earlier;
    EXPECT_EQ(current, stateOf(1));
    EXPECT_EQ(history.undo(current), std::nullopt);
    while (const auto later = history.redo(current))
        current = *later;
    EXPECT_EQ(current, stateOf(101));
}

TEST(AnnotationHistory, redoRestoresTheStateBeforeTheUndo) {
    AnnotationHistory history;
    history.record(stateOf(1), stateOf(2));
    EditorState current = stateOf(2);
    current.selectedID = QUuid::createUuid();
    EXPECT_EQ(history.undo(current), stateOf(1));
    EXPECT_EQ(history.redo(stateOf(1)), current);
    history.clear();
    EXPECT_EQ(history.undo(current), std::nullopt);
}

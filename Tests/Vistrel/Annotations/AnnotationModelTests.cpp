#include "Annotations/AnnotationHistory.h"

#include <gtest/gtest.h>

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

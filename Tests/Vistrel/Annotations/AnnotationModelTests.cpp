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

struct ToolCase {
    AnnotationTool tool;
    const char* title;
    const char* name;
    const char* symbol;
    char key;
    int size;
    bool freehand;
    bool effect;
};

TEST(AnnotationTool, factsOfEveryTool) {
    const ToolCase cases[] = {
        {AnnotationTool::select, "Select", "select", "cursorarrow", 'v', 3, false, false},
        {AnnotationTool::pen, "Pen", "pen", "pencil.tip", 'p', 3, true, false},
        {AnnotationTool::arrow, "Arrow", "arrow", "arrow.up.right", 'a', 3, false, false},
        {AnnotationTool::rectangle, "Rectangle", "rectangle", "rectangle", 'r', 3, false, false},
        {AnnotationTool::marker, "Marker", "marker", "highlighter", 'h', 16, true, false},
        {AnnotationTool::line, "Line", "line", "line.diagonal", 'l', 3, false, false},
        {AnnotationTool::ellipse, "Ellipse", "ellipse", "oval", 'e', 3, false, false},
        {AnnotationTool::blur, "Blur Marker", "blur", "drop.halffull", 'b', 24, true, true},
        {AnnotationTool::pixelate, "Pixelate", "pixelate", "square.grid.3x3.fill", 'x', 12, false, true},
        {AnnotationTool::text, "Text", "text", "textformat", 't', 24, false, false},
    };
    int number = 0;
    for (const ToolCase& c : cases) {
        EXPECT_EQ(static_cast<int>(c.tool), number++);
        EXPECT_EQ(AnnotationTools::title(c.tool), QLatin1String(c.title));
        EXPECT_EQ(AnnotationTools::name(c.tool), QLatin1String(c.name));
        EXPECT_EQ(AnnotationTools::symbol(c.tool), QLatin1String(c.symbol));
        EXPECT_EQ(AnnotationTools::key(c.tool), QLatin1Char(c.key));
        EXPECT_EQ(AnnotationTools::defaultSize(c.tool), c.size);
        EXPECT_EQ(AnnotationTools::isFreehand(c.tool), c.freehand);
        EXPECT_EQ(AnnotationTools::isEffect(c.tool), c.effect);
    }
}

struct BoundsCase {
    const char* name;
    EditorAnnotation layer;
    Rect geometry;
    Rect bounds;
};

TEST(EditorAnnotation, bounds) {
    const BoundsCase cases[] = {
        {"stroke", layer(AnnotationTool::pen, {{5, 9}, {-1, 4}, {3, 3}}, 4), {-1, 3, 6, 6}, {-3, 1, 10, 10}},
        {"shape", layer(AnnotationTool::ellipse, {{5, 9}, {1, 4}}), {1, 4, 4, 5}, {0, 3, 6, 7}},
        {"boxOfBlocks", layer(AnnotationTool::pixelate, {{5, 9}, {1, 4}}), {1, 4, 4, 5}, {1, 4, 4, 5}},
        {"boxOfText", layer(AnnotationTool::text, {{1, 4}, {5, 9}}, 9), {1, 4, 4, 5}, {1, 4, 4, 5}},
        {"withoutPoints", layer(AnnotationTool::pen, {}, 4), {}, {-2, -2, 4, 4}},
    };
    for (const BoundsCase& c : cases) {
        EXPECT_EQ(c.layer.geometryBounds(), c.geometry) << c.name;
        EXPECT_EQ(c.layer.bounds(), c.bounds) << c.name;
        EXPECT_TRUE(c.layer.paintedBounds().contains(c.bounds)) << c.name;
    }
}

TEST(EditorAnnotation, arrowHasBarbsOfThirtyDegrees) {
    for (const auto& [width, length] : {std::pair{2.0, 14.0}, std::pair{10.0, 30.0}}) {
        for (const Point tip : {Point{100, 0}, Point{0, 100}, Point{-60, -80}}) {
            const EditorAnnotation arrow = layer(AnnotationTool::arrow, {{0, 0}, tip}, width);
            const QPainterPath path = arrow.path();
            ASSERT_EQ(path.elementCount(), 6);
            for (const int barb : {2, 4}) {
                EXPECT_EQ(QPointF(path.elementAt(barb)), QPointF(tip.x, tip.y));
                const Point back = {path.elementAt(barb + 1).x - tip.x, path.elementAt(barb + 1).y - tip.y};
                EXPECT_NEAR(std::hypot(back.x, back.y), length, 1e-9);
                const double cosine = -(back.x * tip.x + back.y * tip.y) / (100 * length);
                EXPECT_NEAR(std::acos(cosine), std::numbers::pi / 6, 1e-9);
                EXPECT_TRUE(arrow.paintedBounds().contains(tip + back));
            }
            EXPECT_NE(QPointF(path.elementAt(3)), QPointF(path.elementAt(5)));
        }
    }
    EXPECT_TRUE(layer(AnnotationTool::arrow, {}).path().isEmpty());
}

TEST(EditorAnnotation, movingAndResizingKeepEverythingElse) {
    EditorAnnotation pen = layer(AnnotationTool::pen, {{10, 10}, {20, 30}, {30, 20}});
    pen.size = 7;
    EditorAnnotation moved = pen.movedBy({5, -10});
    EXPECT_EQ(moved.points, (std::vector<Point>{{15, 0}, {25, 20}, {35, 10}}));
    moved.points = pen.points;
    EXPECT_EQ(moved, pen);

    EXPECT_EQ(pen.resizedTo({0, 0, 10, 40}).points, (std::vector<Point>{{0, 0}, {5, 40}, {10, 20}}));
    EXPECT_EQ(pen.resizedTo({10, 40, -10, -40}).points, (std::vector<Point>{{0, 0}, {5, 40}, {10, 20}}));
    const EditorAnnotation flat = layer(AnnotationTool::line, {{10, 5}, {20, 5}});
    EXPECT_EQ(flat.resizedTo({0, 50, 100, 80}).points, (std::vector<Point>{{0, 50}, {100, 50}}));
}

TEST(EditorAnnotation, everyFieldCountsForEquality) {
    const EditorAnnotation original = layer(AnnotationTool::text, {{0, 0}, {1, 1}});
    const std::vector<std::function<void(EditorAnnotation&)>> changes = {
        [](auto& a) { a.id = QUuid::createUuid(); },
        [](auto& a) { a.tool = AnnotationTool::pixelate; },
        [](auto& a) { a.width = std::nextafter(a.width, 100); },
        [](auto& a) { a.size = 3; },
        [](auto& a) { a.color = Qt::blue; },
        [](auto& a) { a.points[1].x = std::nextafter(1, 2); },
        [](auto& a) { a.points.pop_back(); },
        [](auto& a) { a.text = QStringLiteral("x"); },
    };
    for (const auto& change : changes) {
        EditorAnnotation changed = original;
        EXPECT_EQ(changed, original);
        change(changed);
        EXPECT_NE(changed, original);
    }
}

TEST(EditorState, findsLayersByID) {
    EditorState state = {.annotations = {layer(AnnotationTool::pen, {}), layer(AnnotationTool::line, {})}};
    EXPECT_EQ(state.selected(), nullptr);
    state.selectedID = state.annotations[1].id;
    EXPECT_EQ(state.selected(), &state.annotations[1]);
    EXPECT_EQ(state.find(QUuid::createUuid()), nullptr);
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

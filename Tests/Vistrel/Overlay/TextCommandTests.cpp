#include "Annotations/AnnotationTextLayout.h"
#include "Vistrel/Overlay/OverlayFixture.h"

using namespace Qt::StringLiterals;

namespace {

class TextCommandTests : public OverlayFixture {
protected:
    TextCommandTests() {
        select();
        document.tool = AnnotationTool::text;
    }
    void begin(Point p) {
        press(p);
        release(p);
        ASSERT_TRUE(typed);
    }
};

TEST_F(TextCommandTests, commitMakesALayerOfTheTextAsTyped) {
    begin({200, 150});
    editor.layers.stepSize(7);
    editor.layers.setDrawingColor(Qt::green);
    typed->setup.text = u" a\nb\n"_s;
    press({10, 10});
    EXPECT_FALSE(typed);
    ASSERT_EQ(layers().size(), 1U);
    EXPECT_EQ(layers().front().text, u" a\nb\n"_s);
    EXPECT_EQ(layers().front().points, (std::vector<Point>{{200, 131}, {250, 162}}));
    EXPECT_EQ(layers().front().size, 31);
    EXPECT_EQ(document.state.selectedID, layers().front().id);
    EXPECT_EQ(undoSteps(), 1U);
    // The tool keeps its style for the next text.
    EXPECT_EQ(document.drawingSize(), 31);
    EXPECT_EQ(document.drawingColor(), QColor(Qt::green));
}

TEST_F(TextCommandTests, editingReplacesTheLayerInPlace) {
    add(AnnotationTool::text, {{100, 100}, {150, 124}}, 24).text = u"hello"_s;
    add(AnnotationTool::line, {{60, 60}, {70, 70}});
    const EditorState before = document.state;
    document.tool = AnnotationTool::select;
    press({120, 110}, 2);
    release({120, 110});
    ASSERT_TRUE(typed);
    EXPECT_EQ(document.visibleLayers().size(), 1U) << "its editor shows it";
    EXPECT_EQ(typed->setup.anchor, (Point{100, 124}));
    typed->setup.text = u"bye"_s;
    editor.text.commit();
    EXPECT_EQ(layers()[0].id, before.annotations[0].id);
    EXPECT_EQ(layers()[0].text, u"bye"_s);
    EXPECT_EQ(layers()[0].points, (std::vector<Point>{{100, 100}, {130, 124}}));
    EXPECT_EQ(undoSteps(), 1U);
}

TEST_F(TextCommandTests, aLayerOfAnotherSizeIsMeasuredAgainWithinTheSelection) {
    addSelected(AnnotationTool::text, {{300, 200}, {340, 220}}, 14).text = u"wide text that must wrap"_s;
    document.tool = AnnotationTool::select;
    editor.layers.setDrawingSize(40);
    const Rect box = layers().front().geometryBounds();
    EXPECT_EQ(box.minX(), 300);
    EXPECT_EQ(box.maxY(), 220) << "the top-left corner stays";
    EXPECT_EQ(box.size(), AnnotationTextLayout::size(layers().front().text, 40, {50, 170}));
    editor.layers.setDrawingSize(99);
    EXPECT_EQ(undoSteps(), 2U);
    editor.layers.stepSize(1);
    EXPECT_EQ(undoSteps(), 2U) << "it has the largest size already";
}

TEST_F(TextCommandTests, everyCommandCommitsFirst) {
    const std::function<void()> commands[] = {
        [this] { editor.layers.selectTool(AnnotationTool::pen); },
        [this] { editor.layers.selectAnnotation({}); },
        [this] { editor.layers.deleteAnnotation({}); },
        [this] { editor.layers.reorderAnnotation({}, 0); },
        [this] { editor.layers.redo(); },
        [this] { editor.output.copySelection(); },
        [this] { editor.output.saveSelection(); },
        [this] { EXPECT_TRUE(editor.output.imageToShare()); },
    };
    for (const auto& command : commands) {
        SCOPED_TRACE(&command - commands);
        document.state = {};
        document.tool = AnnotationTool::text;
        begin({200, 150});
        typed->setup.text = u"x"_s;
        command();
        EXPECT_FALSE(typed);
        EXPECT_EQ(layers().size(), 1U);
    }
    EXPECT_FALSE(copied.isNull() || saved.isNull());
}

} // namespace

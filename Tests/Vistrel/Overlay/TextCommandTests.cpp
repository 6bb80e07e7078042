#include "Vistrel/Overlay/OverlayFixture.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
    /// Opens a text layer that a line lies upon; the state from before.
    EditorState edit() {
        add(AnnotationTool::text, {{100, 100}, {150, 124}}, 24).text = u"hello"_s;
        add(AnnotationTool::line, {{60, 60}, {70, 70}});
        const EditorState before = document.state;
        document.tool = AnnotationTool::select;
        press({120, 110}, 2);
        release({120, 110});
        EXPECT_TRUE(typed);
        EXPECT_EQ(document.visibleLayers().size(), 1U) << "its editor shows it";
        return before;
    }
};

TEST_F(TextCommandTests, beginsUnderTheWholeSelectionAndNearTheTopAtTheTop) {
    begin({200, 150});
    EXPECT_EQ(typed->setup.fontSize, 24);
    EXPECT_EQ(typed->setup.anchor, (Point{200, 162})) << "the first line is centred on the press";
    EXPECT_EQ(typed->setup.availableSize, (Size{150, 112}));
    EXPECT_EQ(typed->timesFocused, 1);
    begin({200, 245});
    EXPECT_EQ(typed->setup.anchor, (Point{200, 250}));
    EXPECT_THAT(layers(), IsEmpty()) << "blank text adds nothing";
    EXPECT_EQ(undoSteps(), 0U);
}

TEST_F(TextCommandTests, commitMakesALayerOfTheTextAsTyped) {
    begin({200, 150});
    editor.layers.stepSize(7);
    editor.layers.setDrawingColor(Qt::green);
    EXPECT_EQ(typed->timesFocused, 2) << "the keyboard goes back to the text";
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
    const EditorState before = edit();
    EXPECT_EQ(typed->setup.anchor, (Point{100, 124}));
    typed->setup.text = u"bye"_s;
    editor.text.commit();
    EXPECT_EQ(layers()[0].id, before.annotations[0].id);
    EXPECT_EQ(layers()[0].text, u"bye"_s);
    EXPECT_EQ(layers()[0].points, (std::vector<Point>{{100, 100}, {130, 124}}));
    EXPECT_EQ(undoSteps(), 1U);
}

TEST_F(TextCommandTests, emptyingATextDeletesItsLayer) {
    const EditorState before = edit();
    typed->setup.text = u" \n\t"_s;
    editor.text.commit();
    EXPECT_THAT(layers(), ElementsAre(before.annotations[1]));
    EXPECT_FALSE(document.state.selectedID);
    editor.layers.undo();
    EXPECT_EQ(layers(), before.annotations);
}

TEST_F(TextCommandTests, styleChangesStayInTheEditorUntilCommit) {
    const EditorState before = edit();
    editor.layers.setDrawingSize(30);
    editor.layers.setDrawingColor(Qt::blue);
    EXPECT_EQ(typed->setup.fontSize, 30);
    EXPECT_EQ(typed->setup.color, QColor(Qt::blue));
    EXPECT_EQ(document.drawingSize(), 30);
    EXPECT_EQ(layers(), before.annotations);
    EXPECT_FALSE(document.toolSizes.contains(AnnotationTool::text)) << "the tool is not the text tool";
    EXPECT_TRUE(key(Key::escape));
    EXPECT_FALSE(typed);
    EXPECT_EQ(layers(), before.annotations);
    EXPECT_EQ(undoSteps(), 0U);
    EXPECT_EQ(closed, 0) << "the first Escape only cancels the text";
    EXPECT_EQ(actions.back(), Action::textCancelled);
    EXPECT_TRUE(key(Key::escape));
    EXPECT_EQ(closed, 1);
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

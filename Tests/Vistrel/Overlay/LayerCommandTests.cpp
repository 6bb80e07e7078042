#include "Annotations/AnnotationTextLayout.h"
#include "Vistrel/Overlay/OverlayFixture.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

using ::testing::IsEmpty;

namespace {

class LayerCommandTests : public OverlayFixture {
protected:
    LayerCommandTests() { select(); }
};

TEST_F(LayerCommandTests, aTextLayerIsMeasuredAgain) {
    EditorAnnotation& layer = addSelected(AnnotationTool::text, {{300, 200}, {340, 220}}, 14);
    layer.text = u"wide text that must wrap"_s;
    editor.layers.setDrawingSize(40);
    const Rect box = layers().front().geometryBounds();
    const Size expected = AnnotationTextLayout::size(layers().front().text, 40, {50, 170});
    EXPECT_EQ(box.minX(), 300);
    EXPECT_EQ(box.maxY(), 220) << "the top-left corner stays";
    EXPECT_EQ(box.size(), expected);
    EXPECT_LE(box.maxX(), document.selection.maxX());
    EXPECT_GE(box.minY(), document.selection.minY());
}

TEST_F(LayerCommandTests, coloursAreOpaqueAndNeverReachEffects) {
    addSelected(AnnotationTool::pixelate, {{60, 60}, {100, 100}});
    const EditorState before = document.state;
    editor.layers.setDrawingColor(Qt::blue);
    EXPECT_EQ(document.state, before);
    EXPECT_EQ(undoSteps(), 0U);
    addSelected(AnnotationTool::line, {{60, 60}, {100, 100}});
    editor.layers.setDrawingColor(QColor(0, 0, 255, 10));
    EXPECT_EQ(layers().back().color, QColor(0, 0, 255));
    EXPECT_EQ(undoSteps(), 1U);
    document.tool = AnnotationTool::marker;
    editor.layers.setDrawingColor(QColor(10, 20, 30, 128));
    EXPECT_EQ(document.drawingColor(), QColor(10, 20, 30));
}

TEST_F(LayerCommandTests, undoBringsBackWhatWasSelected) {
    const QUuid id = addSelected(AnnotationTool::line, {{60, 60}, {100, 100}}).id;
    for (const KeyCode code : {Key::deleteKey, Key::forwardDelete}) {
        EXPECT_FALSE(key(code, {}, Modifier::option));
        EXPECT_TRUE(key(code));
        EXPECT_THAT(layers(), IsEmpty());
        EXPECT_FALSE(key(code)) << "nothing is selected";
        editor.layers.undo();
        EXPECT_EQ(document.state.selectedID, id);
    }
    editor.layers.redo();
    EXPECT_THAT(layers(), IsEmpty());
    actions.clear();
    editor.layers.redo();
    EXPECT_THAT(actions, IsEmpty()) << "silent when there is nothing";
}

} // namespace

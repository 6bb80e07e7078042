#include "Annotations/AnnotationTextLayout.h"
#include "Overlay/ControlState.h"
#include "Vistrel/Overlay/OverlayFixture.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

using ::testing::ElementsAre;
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

TEST_F(LayerCommandTests, reordersWithinTheList) {
    std::vector<QUuid> ids;
    for (int i = 0; i < 3; ++i)
        ids.push_back(add(AnnotationTool::line, {{60.0 + i, 60}, {100, 100}}).id);
    const auto moved = [&](std::size_t layer, int index) {
        editor.layers.reorderAnnotation(ids[layer], index);
        std::vector<std::ptrdiff_t> order;
        for (const EditorAnnotation& shown : layers())
            order.push_back(std::ranges::find(ids, shown.id) - ids.begin());
        return order;
    };
    EXPECT_THAT(moved(0, 10), ElementsAre(1, 2, 0));
    EXPECT_THAT(moved(2, 0), ElementsAre(2, 1, 0));
    EXPECT_THAT(moved(0, 1), ElementsAre(2, 0, 1));
    EXPECT_THAT(moved(1, -1), ElementsAre(1, 2, 0));
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

TEST_F(LayerCommandTests, toolsStartAfreshWithEveryCapture) {
    document.tool = AnnotationTool::marker;
    editor.layers.setDrawingSize(50);
    editor.layers.setDrawingColor(Qt::blue);
    show({400, 300}, {400, 300}, 1);
    document.tool = AnnotationTool::marker;
    EXPECT_EQ(document.drawingSize(), 16);
    EXPECT_EQ(document.drawingColor(), QColor(255, 204, 0));
}

TEST_F(LayerCommandTests, theSizesToolTipNamesWhatItIsTheSizeOf) {
    const auto toolTip = [this] { return ControlState::of(document).sizeToolTip; };
    EXPECT_EQ(toolTip(), u"Stroke width (1–99)"_s);
    addSelected(AnnotationTool::pixelate, {{60, 60}, {100, 100}});
    EXPECT_EQ(toolTip(), u"Pixel block size (1–99)"_s);
    EXPECT_FALSE(ControlState::of(document).colorEnabled);
    document.tool = AnnotationTool::text;
    EXPECT_EQ(toolTip(), u"Text size (1–99)"_s);
    EXPECT_TRUE(ControlState::of(document).colorEnabled);
}

} // namespace

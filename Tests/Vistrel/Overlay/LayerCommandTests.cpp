#include "Annotations/AnnotationTextLayout.h"
#include "Overlay/ControlState.h"
#include "Vistrel/Overlay/OverlayFixture.h"

#include <gmock/gmock.h>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class LayerCommandTests : public OverlayFixture {
protected:
    LayerCommandTests() { select(); }
};

TEST_F(LayerCommandTests, choosingAToolDeselectsAndReports) {
    addSelected(AnnotationTool::line, {{60, 60}, {100, 100}});
    editor.layers.selectTool(AnnotationTool::blur);
    EXPECT_FALSE(document.state.selectedID);
    EXPECT_THAT(actions, ElementsAre(Action::toolSelected));
    EXPECT_EQ(lastDetails.tool, static_cast<int>(AnnotationTool::blur));
    EXPECT_EQ(lastDetails.size, 24);
    EXPECT_EQ(lastDetails.layers, 1);
    EXPECT_EQ(canvasFocused, 1);
    EXPECT_EQ(pickerClosed, 1);
    EXPECT_EQ(undoSteps(), 0U);
}

TEST_F(LayerCommandTests, selectingALayer) {
    document.tool = AnnotationTool::pen;
    const QUuid id = add(AnnotationTool::ellipse, {{60, 60}, {100, 100}}).id;
    editor.layers.selectAnnotation(QUuid::createUuid());
    EXPECT_EQ(document.tool, AnnotationTool::pen) << "an unknown layer changes nothing";
    editor.layers.selectAnnotation(id);
    EXPECT_EQ(document.tool, AnnotationTool::select);
    EXPECT_EQ(document.state.selectedID, id);
    EXPECT_EQ(lastDetails.tool, static_cast<int>(AnnotationTool::ellipse));
    EXPECT_THAT(actions, ElementsAre(Action::layerSelected));
}

struct SizeCase {
    const char* name;
    int size;
    int expected;
};

TEST_F(LayerCommandTests, sizesAreHeldTo1To99) {
    document.tool = AnnotationTool::line;
    for (const SizeCase& row :
         {SizeCase{"zero", 0, 1}, {"negative", -7, 1}, {"high", 250, 99}, {"plain", 42, 42}}) {
        editor.layers.setDrawingSize(row.size);
        EXPECT_EQ(document.drawingSize(), row.expected) << row.name;
        EXPECT_EQ(lastDetails.size, row.expected) << row.name;
    }
    EXPECT_EQ(undoSteps(), 0U) << "a tool's size is no undo step";
    EXPECT_EQ(document.toolSizes[AnnotationTool::pen], 3) << "each tool has its own";
}

TEST_F(LayerCommandTests, sizeOfTheSelectedLayer) {
    editor.layers.setDrawingSize(20);
    EXPECT_THAT(actions, IsEmpty()) << "nothing to size";
    addSelected(AnnotationTool::rectangle, {{60, 60}, {100, 100}});
    type(u"+");
    EXPECT_EQ(layers().front().size, 4);
    EXPECT_EQ(layers().front().width, 4);
    EXPECT_EQ(undoSteps(), 1U);
    type(u"=");
    type(u"−");
    type(u"-");
    EXPECT_EQ(layers().front().size, 3);
    EXPECT_EQ(undoSteps(), 4U) << "every step is its own";
    EXPECT_EQ(lastDetails.tool, static_cast<int>(AnnotationTool::rectangle));
}

TEST_F(LayerCommandTests, aLayerWithoutASizeHasTheOneOfItsWidth) {
    show({200, 150}, {400, 300}, 2);
    select({0, 0, 200, 150});
    addSelected(AnnotationTool::line, {{60, 60}, {100, 100}}, 3.3).size.reset();
    EXPECT_EQ(document.drawingSize(), 7);
}

TEST_F(LayerCommandTests, aTextLayerIsMeasuredAgain) {
    EditorAnnotation& layer = addSelected(AnnotationTool::text, {{300, 200}, {340, 220}}, 14);
    layer.text = QStringLiteral("wide text that must wrap");
    editor.layers.setDrawingSize(40);
    const Rect box = layers().front().geometryBounds();
    const Size expected = AnnotationTextLayout::size(layers().front().text, 40, {50, 170});
    EXPECT_EQ(box.minX(), 300);
    EXPECT_EQ(box.maxY(), 220) << "the top-left corner stays";
    EXPECT_EQ(box.size(), expected);
    EXPECT_LE(box.maxX(), document.selection.maxX());
    EXPECT_GE(box.minY(), document.selection.minY());
}

TEST_F(LayerCommandTests, stepAndTypedSizes) {
    document.tool = AnnotationTool::pen;
    editor.layers.stepSize(1);
    EXPECT_EQ(document.drawingSize(), 4);
    EXPECT_EQ(canvasFocused, 1);
    editor.layers.commitSize(std::nullopt);
    EXPECT_EQ(document.drawingSize(), 4);
    EXPECT_GT(changes, 1) << "the controls show the size again";
    editor.layers.commitSize(17);
    EXPECT_EQ(document.drawingSize(), 17);
}

TEST_F(LayerCommandTests, coloursAreOpaqueAndNeverReachEffects) {
    document.tool = AnnotationTool::marker;
    editor.layers.setDrawingColor(QColor(10, 20, 30, 128));
    EXPECT_EQ(document.drawingColor(), QColor(10, 20, 30));
    EXPECT_EQ(undoSteps(), 0U);

    document.tool = AnnotationTool::select;
    addSelected(AnnotationTool::pixelate, {{60, 60}, {100, 100}});
    const EditorState before = document.state;
    editor.layers.setDrawingColor(Qt::blue);
    EXPECT_EQ(document.state, before);
    EXPECT_EQ(undoSteps(), 0U);
    EXPECT_EQ(actions.back(), Action::colorChanged);

    addSelected(AnnotationTool::line, {{60, 60}, {100, 100}});
    editor.layers.setDrawingColor(QColor(0, 0, 255, 10));
    EXPECT_EQ(layers().back().color, QColor(0, 0, 255));
    EXPECT_EQ(undoSteps(), 1U);
}

struct ReorderCase {
    const char* name;
    int index;
    std::vector<int> expected;
};

TEST_F(LayerCommandTests, reorders) {
    for (const ReorderCase& row :
         {ReorderCase{"farAbove", 10, {1, 2, 0}}, {"below", -1, {0, 1, 2}}, {"between", 1, {1, 0, 2}}}) {
        SCOPED_TRACE(row.name);
        document.state = {};
        for (int i = 0; i < 3; ++i)
            add(AnnotationTool::line, {{60.0 + i, 60}, {100, 100}});
        const EditorState before = document.state;
        actions.clear();
        editor.layers.reorderAnnotation(before.annotations[0].id, row.index);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_EQ(layers()[i].id, before.annotations[static_cast<std::size_t>(row.expected[i])].id);
        EXPECT_THAT(actions, ElementsAre(Action::layerReordered));
        editor.layers.reorderAnnotation(QUuid::createUuid(), 0);
        EXPECT_EQ(actions.size(), 1U);
    }
}

TEST_F(LayerCommandTests, deletesAndBringsBack) {
    const QUuid id = addSelected(AnnotationTool::line, {{60, 60}, {100, 100}}).id;
    editor.layers.deleteAnnotation(id);
    EXPECT_THAT(layers(), IsEmpty());
    EXPECT_FALSE(document.state.selectedID);
    editor.layers.undo();
    EXPECT_EQ(document.state.selectedID, id) << "the selection of the time comes back";
    editor.layers.redo();
    EXPECT_THAT(layers(), IsEmpty());
    EXPECT_THAT(actions, ElementsAre(Action::layerDeleted, Action::undo, Action::redo));
    editor.layers.redo();
    EXPECT_EQ(actions.size(), 3U) << "silent when there is nothing";
}

TEST_F(LayerCommandTests, controlsShowTheStyleTool) {
    struct ControlCase {
        const char* name;
        AnnotationTool tool;
        std::optional<AnnotationTool> layer;
        bool size, color;
        const char16_t* toolTip;
    };
    const ControlCase cases[] = {
        {"selectWithNothing", AnnotationTool::select, {}, false, false, u"Stroke width (1–99)"},
        {"selectWithPixelate", AnnotationTool::select, AnnotationTool::pixelate, true, false,
         u"Pixel block size (1–99)"},
        {"selectWithText", AnnotationTool::select, AnnotationTool::text, true, true, u"Text size (1–99)"},
        {"blur", AnnotationTool::blur, {}, true, false, u"Stroke width (1–99)"},
        {"text", AnnotationTool::text, AnnotationTool::line, true, true, u"Text size (1–99)"},
    };
    for (const ControlCase& row : cases) {
        document.state = {};
        document.tool = row.tool;
        if (row.layer)
            addSelected(*row.layer, {{60, 60}, {100, 100}});
        const ControlState state = ControlState::of(document);
        EXPECT_EQ(state.sizeEnabled, row.size) << row.name;
        EXPECT_EQ(state.colorEnabled, row.color) << row.name;
        EXPECT_EQ(state.sizeToolTip, QString::fromUtf16(row.toolTip)) << row.name;
    }
}

TEST_F(LayerCommandTests, toolsStartAfreshWithEveryCapture) {
    document.tool = AnnotationTool::pen;
    editor.layers.setDrawingSize(50);
    editor.layers.setDrawingColor(Qt::blue);
    show({400, 300}, {400, 300}, 1);
    const std::vector<int> defaults = {3, 3, 3, 3, 16, 3, 3, 24, 12, 24};
    for (int tool = 0; tool < AnnotationTools::count; ++tool) {
        document.tool = static_cast<AnnotationTool>(tool);
        EXPECT_EQ(document.drawingSize(), defaults[static_cast<std::size_t>(tool)]) << tool;
        EXPECT_EQ(document.drawingColor(),
                  document.tool == AnnotationTool::marker ? QColor(255, 204, 0) : QColor(255, 59, 48));
    }
}

TEST_F(LayerCommandTests, theLargestDocumentsLoseNothing) {
    constexpr int layerCount = 1000;
    constexpr int keptSteps = 100;
    select();
    document.tool = AnnotationTool::pen;
    press({100, 100});
    for (int i = 0; i < 5000; ++i)
        drag({100.0 + i % 200, 100.0 + i % 90});
    release({200, 150});
    const EditorAnnotation scribble = layers().front();
    EXPECT_EQ(scribble.points.size(), 5003U) << "the press counts twice, every move and the release once";
    for (int i = 1; i < layerCount; ++i)
        stroke({{100.0 + i % 200, 120}, {110.0 + i % 200, 140}});
    const std::vector<EditorAnnotation> all = layers();
    ASSERT_EQ(all.size(), std::size_t(layerCount));
    for (int i = 0; i <= keptSteps; ++i)
        editor.layers.undo();
    EXPECT_EQ(layers().size(), std::size_t(layerCount - keptSteps));
    for (int i = 0; i <= keptSteps; ++i)
        editor.layers.redo();
    EXPECT_EQ(layers(), all);
}

} // namespace

#include "Overlay/CanvasCursor.h"
#include "Vistrel/Overlay/OverlayFixture.h"

namespace {

using Shape = CanvasCursor::Shape;
using Tool = AnnotationTool;

class CanvasCursorTests : public OverlayFixture {};

TEST_F(CanvasCursorTests, tellsWhatAPressWouldDo) {
    select();
    addSelected(Tool::rectangle, {{100, 100}, {200, 200}});
    const std::tuple<const char*, Tool, Point, bool, CanvasCursor> rows[] = {
        {"outside", Tool::select, {10, 10}, false, {}},
        {"panel", Tool::select, {200, 150}, true, {Shape::arrow}},
        {"inside", Tool::select, {300, 150}, false, {Shape::openHand}},
        {"layerCorner", Tool::select, {200, 200}, false, {Shape::resize, 4}},
        {"selectionEdge", Tool::select, {200, 255}, false, {Shape::resize, 5}},
        {"edgeWithATool", Tool::line, {200, 252}, false, {}},
        {"pen", Tool::pen, {200, 200}, false, {Shape::brush, 0, 3}},
        {"text", Tool::text, {200, 200}, false, {Shape::iBeam}},
    };
    for (const auto& [name, tool, place, overPanel, expected] : rows) {
        document.tool = tool;
        EXPECT_EQ(CanvasCursor::at(place, document, overPanel), expected) << name;
    }
    document.tool = Tool::select;
    press({300, 150});
    EXPECT_EQ(CanvasCursor::at({10, 10}, document, true).shape, Shape::closedHand) << "as long as it moves";
}

} // namespace

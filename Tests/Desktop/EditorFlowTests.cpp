#include "Desktop/EditorOnDesktop.h"

#include "VistrelPlatform/Keyboard.h"

#include <gtest/gtest.h>

namespace {

using Editor = EditorOnDesktop;

constexpr KeyCode zKey = 6;
constexpr KeyCode tabKey = 48;
constexpr KeyCode spaceKey = 49;
constexpr QRect wideArea(300, 120, 600, 440);

struct DrawCase {
    Editor::Tool tool;
    int size;
};
/// All tools that draw, in the order of the buttons.
constexpr DrawCase drawCases[] = {
    {Editor::pen, 3},     {Editor::line, 3},    {Editor::arrow, 3}, {Editor::rectangle, 3},
    {Editor::ellipse, 3}, {Editor::marker, 16}, {Editor::blur, 24}, {Editor::pixelate, 12},
};

std::string step(const char* action, int tool, int size, int layers) {
    return std::string(action) + '(' + std::to_string(tool) + ',' + std::to_string(size) + ',' +
           std::to_string(layers) + ')';
}

/// The middle of a uniform block of this colour in the window.
std::optional<QPoint> findBlock(const QImage& screen, QRect window, QRgb color) {
    constexpr int side = 8;
    for (int y = window.top(); y + side <= window.bottom(); y += side / 2) {
        for (int x = window.left(); x + side <= window.right(); ++x) {
            bool uniform = true;
            for (int i = 0; i < side * side && uniform; ++i)
                uniform = screen.pixel(x + i % side, y + i / side) == color;
            if (uniform)
                return QPoint(x + side / 2, y + side / 2);
        }
    }
    return std::nullopt;
}

/// The colour panel's place on the screen.
std::optional<QRect> colorPanel(Editor& editor) {
    for (const MappedWindow& window : editor.session.client().mappedWindows())
        if (window.rect.width() > 100 && window.rect.width() < 1000)
            return window.rect;
    return std::nullopt;
}

/// Opens the colour panel and presses the swatch; false when either is not there.
bool chooseColor(Editor& editor, QRgb color) {
    editor.click(editor.colorWell());
    std::optional<QPoint> swatch;
    const bool found = waitUntil([&] {
        const auto panel = colorPanel(editor);
        const QImage screen = editor.session.screenPixels();
        if (panel)
            swatch = findBlock(screen, panel->intersected(screen.rect()), color);
        return swatch.has_value();
    });
    if (found)
        editor.click(*swatch);
    return found;
}

bool colorPanelCloses(Editor& editor) {
    return waitUntil([&] { return !colorPanel(editor); });
}

} // namespace

TEST(EditorFlow, EveryToolDrawsAndTheHistoryLeadsToNothingAndBack) {
    Editor editor;
    ASSERT_TRUE(editor.edit(wideArea));
    const QImage untouched = editor.settledSelection();
    XTestInput& input = editor.session.input();
    // There is no recording behind its button: neither the pointer nor the keyboard gets an answer.
    editor.click(editor.actionButton(Editor::record));

    int count = 0;
    QImage before = untouched;
    for (const DrawCase& row : drawCases) {
        SCOPED_TRACE(row.tool);
        const QPoint corner = wideArea.topLeft() + QPoint(40 + 130 * (count % 4), 60 + 170 * (count / 4));
        editor.click(editor.toolButton(row.tool));
        editor.drag(corner, corner + QPoint(90, 90));
        EXPECT_EQ(editor.steps(2), step("toolSelected", row.tool, row.size, count) + ' ' +
                                       step("layerCreated", row.tool, row.size, count + 1));
        editor.layers = ++count;
        const QRect part = QRect(corner - wideArea.topLeft(), QSize(90, 90)).adjusted(-20, -20, 20, 20);
        const QImage after = editor.settledSelection();
        EXPECT_NE(after.copy(part), before.copy(part)) << "nothing was drawn";
        before = after;
    }
    editor.click(editor.toolButton(Editor::text));
    editor.click(wideArea.topLeft() + QPoint(40, 390));
    // Keys that mean something to the canvas are only letters here.
    editor.type("vparhlebxt +-=");
    input.chord(Modifier::control, Key::returnKey);
    editor.layers = ++count;
    EXPECT_EQ(editor.steps(3), "toolSelected(9,24,8) textEditingStarted(9,24,8) textCommitted(9,24,9)");
    editor.click(editor.toolButton(Editor::select));
    EXPECT_EQ(editor.steps(1), "toolSelected(0,3,9)");
    const QImage full = editor.settledSelection();
    EXPECT_NE(full, before);

    // Once more than there are steps: the button is off by then.
    for (int left = count; left >= 0; --left) {
        editor.click(editor.undoButton());
        if (left > 0) {
            EXPECT_EQ(editor.steps(1), step("undo", Editor::select, 3, left - 1));
            editor.layers = left - 1;
        }
    }
    EXPECT_TRUE(editor.waitUntilSelectionShows(untouched));
    for (int shown = 0; shown <= count; ++shown) {
        input.chord(Modifier::control | Modifier::shift, zKey);
        if (shown < count) {
            EXPECT_EQ(editor.steps(1), step("redo", Editor::select, 3, shown + 1));
            editor.layers = shown + 1;
        }
    }
    EXPECT_TRUE(editor.waitUntilSelectionShows(full));
    editor.click(editor.undoButton());
    editor.layers = count - 1;
    editor.click(editor.redoButton());
    editor.layers = count;
    EXPECT_EQ(editor.steps(2), "undo(0,3,8) redo(0,3,9)");
    for (int left = count; left > 0; --left)
        input.chord(Modifier::command, zKey);
    for (int left = count; left > 0; --left)
        EXPECT_EQ(editor.steps(1), step("undo", Editor::select, 3, left - 1));
    editor.layers = 0;

    editor.click(editor.actionButton(Editor::record));
    editor.click(editor.actionButton(Editor::copy));
    ASSERT_TRUE(editor.waitFor(QStringLiteral("captureClosed")));
    EXPECT_EQ(editor.steps(1).substr(0, 13), "copyRequested");
    EXPECT_EQ(editor.steps(1).substr(0, 13), "copySucceeded");
    EXPECT_EQ(largestDifference(editor.clipboardImage(), editor.desktop.copy(wideArea)), 0);
}

TEST(EditorFlow, TextIsTypedEditedCancelledAndEmptied) {
    Editor editor;
    ASSERT_TRUE(editor.edit(wideArea));
    XTestInput& input = editor.session.input();
    const QPoint place = wideArea.center();
    editor.type("t");
    editor.click(place);
    editor.type("vpx");
    input.key(Key::returnKey);
    editor.type("a+-");
    input.chord(Modifier::command, Key::returnKey);
    EXPECT_EQ(editor.steps(3), "toolSelected(9,24,0) textEditingStarted(9,24,0) textCommitted(9,24,1)");
    editor.layers = 1;

    // Size and colour of a text being edited belong to its editor until it is committed.
    const QPoint onText = place + QPoint(12, 0);
    editor.type("v");
    input.doubleClick(onText);
    editor.click(editor.plusButton());
    editor.type("v+");
    EXPECT_EQ(editor.steps(4),
              "toolSelected(0,3,1) layerMoved(0,24,1) textEditingStarted(9,24,1) sizeChanged(9,25,1)");
    input.key(Key::escape);
    EXPECT_EQ(editor.steps(1), "textCancelled(9,25,1)");

    // What is typed there is copied as text, and the capture goes on.
    input.doubleClick(onText);
    editor.command('a');
    editor.command('c');
    EXPECT_EQ(editor.steps(2), "layerMoved(0,24,1) textEditingStarted(9,24,1)");
    EXPECT_TRUE(waitUntil(
        [&] { return editor.session.clipboard(QStringLiteral("UTF8_STRING")) == QByteArray("vpx\na+-"); }));
    editor.command('a');
    input.key(Key::forwardDelete);
    input.chord(Modifier::control, Key::returnKey);
    EXPECT_EQ(editor.steps(1), "textCommitted(9,24,0)");
    editor.layers = 0;
    editor.command('z');
    EXPECT_EQ(editor.steps(1), "undo(0,24,1)");
    editor.layers = 1;

    // A new text that is only blank adds nothing; a press elsewhere commits.
    editor.click(editor.toolButton(Editor::text));
    editor.click(place + QPoint(0, 100));
    editor.type("  ");
    editor.click(editor.toolButton(Editor::select));
    EXPECT_EQ(editor.steps(4), "toolSelected(9,24,1) textEditingStarted(9,24,1) textCommitted(9,24,1) "
                               "toolSelected(0,3,1)");
    input.key(Key::escape);
    ASSERT_TRUE(editor.waitFor(QStringLiteral("captureClosed")));
}

TEST(EditorFlow, SizesAndColoursAreChosenForToolsAndForLayers) {
    Editor editor;
    ASSERT_TRUE(editor.edit(wideArea));
    XTestInput& input = editor.session.input();
    // Without a style there is nothing to step.
    editor.type("+");
    editor.click(editor.plusButton());
    // Past the select tool to the pen: what is disabled is left out.
    for (const KeyCode key : {tabKey, tabKey, spaceKey})
        input.key(key);
    editor.type("+=-");
    EXPECT_EQ(editor.steps(4),
              "toolSelected(1,3,0) sizeChanged(1,4,0) sizeChanged(1,5,0) sizeChanged(1,4,0)");
    editor.click(editor.plusButton());
    editor.click(editor.plusButton());
    editor.click(editor.minusButton());
    EXPECT_EQ(editor.steps(3), "sizeChanged(1,5,0) sizeChanged(1,6,0) sizeChanged(1,5,0)");

    struct FieldCase {
        const char* typed;
        std::optional<int> taken;
    };
    int size = 5;
    for (const FieldCase& row : {FieldCase{"0", 1},
                                 {"250", 99},
                                 {"vparhlebxt", {}},
                                 {"12", 12},
                                 {"", {}},
                                 {"99999999999999999999", 99},
                                 {"-5", 1},
                                 {"+7", 7},
                                 {"3.5", {}}}) {
        SCOPED_TRACE(row.typed);
        // The press marks the number, so that typing replaces it.
        editor.click(editor.sizeField());
        input.key(Key::deleteKey);
        editor.type(row.typed);
        input.key(Key::returnKey);
        if (row.taken) {
            size = *row.taken;
            EXPECT_EQ(editor.steps(1), step("sizeChanged", Editor::pen, size, 0));
        }
        // What cannot be read leaves the size as it was, and the keyboard is the canvas's again.
        editor.type("+-");
        const int grown = std::min(size + 1, 99);
        size = grown - 1;
        EXPECT_EQ(editor.steps(2), step("sizeChanged", Editor::pen, grown, 0) + ' ' +
                                       step("sizeChanged", Editor::pen, size, 0));
    }
    // A number still being typed is taken over by what the user does next.
    editor.click(editor.sizeField());
    editor.type("8");
    editor.click(editor.toolButton(Editor::line));
    EXPECT_EQ(editor.steps(2), "sizeChanged(1,8,0) toolSelected(5,3,0)");

    // A layer's own size: each step can be undone.
    const QPoint start = wideArea.topLeft() + QPoint(100, 200);
    editor.drag(start, start + QPoint(200, 0));
    editor.layers = 1;
    editor.type("v");
    editor.click(start + QPoint(100, 0));
    editor.type("++");
    editor.command('z');
    EXPECT_EQ(editor.steps(6), "layerCreated(5,3,1) toolSelected(0,3,1) layerMoved(0,3,1) "
                               "sizeChanged(5,4,1) sizeChanged(5,5,1) undo(0,4,1)");

    constexpr QRgb teal = qRgb(0, 170, 127);
    const xcb_window_t overlay = editor.session.client().focusedWindow();
    ASSERT_TRUE(chooseColor(editor, teal));
    EXPECT_EQ(editor.steps(1), "colorChanged(5,4,1)");
    EXPECT_TRUE(waitUntil([&] { return editor.session.client().pixelAt(start + QPoint(50, 0)) == teal; }));
    // Escape in the panel is the panel's, and the keyboard goes back to the canvas.
    input.key(Key::escape);
    ASSERT_TRUE(colorPanelCloses(editor));
    ASSERT_TRUE(waitUntil([&] { return editor.session.client().focusedWindow() == overlay; }));
    editor.command('z');
    EXPECT_EQ(editor.steps(1), "undo(0,4,1)");
    EXPECT_TRUE(waitUntil([&] { return editor.session.client().pixelAt(start + QPoint(50, 0)) != teal; }));

    editor.type("e");
    ASSERT_TRUE(chooseColor(editor, teal));
    EXPECT_EQ(editor.steps(2), "toolSelected(6,3,1) colorChanged(6,3,1)");
    // A press on the canvas puts the panel away.
    editor.click({60, 60});
    ASSERT_TRUE(colorPanelCloses(editor));
    editor.drag(start + QPoint(0, 40), start + QPoint(100, 140));
    EXPECT_EQ(editor.steps(1), "layerCreated(6,3,2)");
    editor.layers = 2;
    EXPECT_TRUE(waitUntil([&] { return editor.session.client().pixelAt(start + QPoint(50, 40)) == teal; }));

    // Effects have no colour.
    editor.type("x");
    editor.drag(start + QPoint(200, 40), start + QPoint(300, 140));
    editor.layers = 3;
    editor.click(editor.colorWell());
    editor.type("+");
    EXPECT_EQ(editor.steps(3), "toolSelected(8,12,2) layerCreated(8,12,3) sizeChanged(8,13,3)");
}

TEST(EditorFlow, LayersAreChosenDraggedAndDeletedInTheList) {
    Editor editor;
    ASSERT_TRUE(editor.edit(wideArea));
    XTestInput& input = editor.session.input();
    const QImage untouched = editor.settledSelection();
    const QString tools = QStringLiteral("plarehb");
    for (const QChar tool : tools) {
        input.type(tool);
        const QPoint corner = wideArea.topLeft() + QPoint(30 + 75 * editor.layers, 100);
        editor.drag(corner, corner + QPoint(50, 200));
        ++editor.layers;
    }
    editor.type("v");
    EXPECT_EQ(editor.steps(15),
              "toolSelected(1,3,0) layerCreated(1,3,1) toolSelected(5,3,1) layerCreated(5,3,2) "
              "toolSelected(2,3,2) layerCreated(2,3,3) toolSelected(3,3,3) layerCreated(3,3,4) "
              "toolSelected(6,3,4) layerCreated(6,3,5) toolSelected(4,16,5) layerCreated(4,16,6) "
              "toolSelected(7,24,6) layerCreated(7,24,7) toolSelected(0,3,7)");
    const auto chosen = [&](int row) {
        editor.click(editor.rowLabel(row));
        return editor.steps(1);
    };
    // Newest first: blur, marker, ellipse, rectangle, arrow, and two more below the edge.
    EXPECT_EQ(chosen(0), "layerSelected(7,24,7)");
    EXPECT_EQ(chosen(4), "layerSelected(2,3,7)");

    // A drag shorter than three points is a click.
    editor.drag(editor.rowIcon(3), editor.rowIcon(3) + QPoint(1, 1));
    EXPECT_EQ(editor.steps(1), "layerSelected(3,3,7)");
    // Below the row under the pointer's lower half, above its upper half.
    editor.drag(editor.rowIcon(0), editor.rowIcon(2) + QPoint(0, 8));
    EXPECT_EQ(editor.steps(1), "layerReordered(7,3,7)");
    EXPECT_EQ(chosen(2), "layerSelected(7,24,7)");
    EXPECT_EQ(chosen(0), "layerSelected(4,16,7)");
    editor.drag(editor.rowIcon(3), editor.rowIcon(1) - QPoint(0, 8));
    EXPECT_EQ(editor.steps(1), "layerReordered(3,16,7)");
    EXPECT_EQ(chosen(1), "layerSelected(3,3,7)");
    // Neither onto itself nor outside the list.
    editor.drag(editor.rowIcon(1), editor.rowIcon(1) + QPoint(0, 8));
    editor.drag(editor.rowIcon(1), {wideArea.center().x(), editor.rowIcon(1).y()});
    EXPECT_EQ(chosen(0), "layerSelected(4,16,7)");

    // Held at the lower edge the list scrolls to its end, and the layer becomes the oldest.
    input.movePointer(editor.rowIcon(0));
    input.pressButton();
    input.movePointer(editor.rowIcon(2));
    const QPoint edge = editor.rowIcon(4) + QPoint(0, 11);
    input.movePointer(edge);
    const QRect lastRow(editor.rowIcon(4) - QPoint(8, 8), QSize(120, 16));
    QImage look;
    int alike = 0;
    EXPECT_TRUE(waitUntil([&] {
        const QImage now = editor.session.screenPixels(lastRow);
        alike = now == look ? alike + 1 : 0;
        look = now;
        return alike > 100;
    }));
    input.releaseButton();
    EXPECT_EQ(editor.steps(1), "layerReordered(4,16,7)");
    EXPECT_EQ(chosen(4), "layerSelected(4,16,7)") << "the list is scrolled to its end";

    // Scrolled to its end the list shows the last five; its last row is the marker.
    editor.click(editor.rowTrash(4));
    editor.layers = 6;
    EXPECT_EQ(editor.steps(1), "layerDeleted(4,16,7)");
    input.key(Key::deleteKey);
    editor.command('z');
    EXPECT_EQ(editor.steps(1), "undo(0,16,7)");
    editor.layers = 7;
    for (int left = 10; left > 0; --left)
        editor.command('z');
    for (int left = 10; left > 0; --left)
        EXPECT_EQ(editor.steps(1).substr(0, 5), "undo(");
    editor.layers = 0;
    EXPECT_TRUE(editor.waitUntilSelectionShows(untouched));
    editor.command('c');
    ASSERT_TRUE(editor.waitFor(QStringLiteral("captureClosed")));
    EXPECT_EQ(largestDifference(editor.clipboardImage(), editor.desktop.copy(wideArea)), 0);
}

#include "Desktop/EditorOnDesktop.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Editor = EditorOnDesktop;

constexpr KeyCode zKey = 6;
constexpr QRect wideArea(300, 120, 600, 440);

class EditorFlow : public ::testing::Test {
protected:
    EditorFlow() { EXPECT_TRUE(editor.edit(wideArea)); }

    bool shows(const QImage& picture) {
        return waitUntil([&] { return editor.session.screenPixels(wideArea) == picture; });
    }
    /// The colour panel's place on the screen.
    std::optional<QRect> colorPanel() {
        for (const MappedWindow& window : editor.session.client().mappedWindows())
            if (window.rect.width() > 100 && window.rect.width() < 1000)
                return window.rect;
        return std::nullopt;
    }
    bool colorPanelCloses() {
        return waitUntil([&] { return !colorPanel(); });
    }
    /// Opens the colour panel and presses the swatch: a uniform block of its colour.
    bool chooseColor(QRgb color) {
        constexpr int side = 8;
        editor.click(editor.colorWell());
        return waitUntil([&] {
            const auto panel = colorPanel();
            const QImage screen = editor.session.screenPixels();
            QImage block(side, side, screen.format());
            block.fill(color);
            const QRect area = panel ? panel->intersected(screen.rect()) : QRect();
            for (int y = area.top(); y + side <= area.bottom(); y += side / 2)
                for (int x = area.left(); x + side <= area.right(); ++x)
                    if (screen.pixel(x, y) == color && screen.copy(x, y, side, side) == block) {
                        editor.click({x + side / 2, y + side / 2});
                        return true;
                    }
            return false;
        });
    }
    bool becomes(QPoint position, QRgb color, bool is = true) {
        return waitUntil([&] { return (editor.session.client().pixelAt(position) == color) == is; });
    }

    Editor editor;
};

std::string historyStep(const char* action, int layers) {
    return std::string(action) + "(0,3," + std::to_string(layers) + ')';
}

} // namespace

TEST_F(EditorFlow, EveryToolDrawsAndTheHistoryLeadsToNothingAndBack) {
    const std::pair<Editor::Tool, const char*> rows[] = {
        {Editor::pen, "toolSelected(1,3,0) layerCreated(1,3,1)"},
        {Editor::line, "toolSelected(5,3,1) layerCreated(5,3,2)"},
        {Editor::arrow, "toolSelected(2,3,2) layerCreated(2,3,3)"},
        {Editor::rectangle, "toolSelected(3,3,3) layerCreated(3,3,4)"},
        {Editor::ellipse, "toolSelected(6,3,4) layerCreated(6,3,5)"},
        {Editor::marker, "toolSelected(4,16,5) layerCreated(4,16,6)"},
        {Editor::blur, "toolSelected(7,24,6) layerCreated(7,24,7)"},
        {Editor::pixelate, "toolSelected(8,12,7) layerCreated(8,12,8)"},
    };
    const QImage untouched = editor.settledSelection();
    // There is no recording behind its button: neither the pointer nor the keyboard gets an answer.
    editor.click(editor.actionButton(Editor::record));
    QImage before = untouched;
    int& count = editor.layers;
    for (const auto& [tool, expected] : rows) {
        const QPoint corner(40 + 130 * (count % 4), 60 + 170 * (count / 4));
        editor.click(editor.toolButton(tool));
        editor.drag(wideArea.topLeft() + corner, wideArea.topLeft() + corner + QPoint(90, 90));
        EXPECT_EQ(editor.steps(2), expected);
        ++count;
        const QRect part = QRect(corner, QSize(90, 90)).adjusted(-20, -20, 20, 20);
        EXPECT_TRUE(waitUntil([&] {
            return editor.session.screenPixels(part.translated(wideArea.topLeft())) != before.copy(part);
        })) << "nothing was drawn: "
            << expected;
        before = editor.settledSelection();
    }
    editor.click(editor.toolButton(Editor::text));
    editor.click(wideArea.topLeft() + QPoint(40, 390));
    // Keys that mean something to the canvas are only letters here.
    editor.type(u"vparhlebxt +-="_s);
    editor.key(Key::returnKey, Modifier::control);
    ++count;
    editor.click(editor.toolButton(Editor::selectTool));
    EXPECT_EQ(editor.steps(4),
              "toolSelected(9,24,8) textEditingStarted(9,24,8) textCommitted(9,24,9) toolSelected(0,3,9)");
    const QImage full = editor.settledSelection();
    EXPECT_NE(full, before);

    // Once more than there are steps: the button is off by then.
    for (int left = 9; left >= 0; --left) {
        editor.click(editor.undoButton());
        if (left > 0) {
            EXPECT_EQ(editor.steps(), historyStep("undo", count = left - 1));
        }
    }
    EXPECT_TRUE(shows(untouched));
    for (int shown = 1; shown <= 10; ++shown) {
        editor.key(zKey, Modifier::control | Modifier::shift);
        if (shown < 10) {
            EXPECT_EQ(editor.steps(), historyStep("redo", count = shown));
        }
    }
    EXPECT_TRUE(shows(full));
    editor.click(editor.undoButton());
    count = 8;
    editor.click(editor.redoButton());
    count = 9;
    EXPECT_EQ(editor.steps(2), "undo(0,3,8) redo(0,3,9)");
    for (int left = 9; left > 0; --left)
        editor.key(zKey, Modifier::command);
    for (int left = 9; left > 0; --left)
        EXPECT_EQ(editor.steps(), historyStep("undo", left - 1));
    count = 0;
    editor.click(editor.actionButton(Editor::copyAction));
    ASSERT_TRUE(editor.waitFor("captureClosed"));
    EXPECT_TRUE(editor.steps().starts_with("copyRequested"));
    EXPECT_TRUE(editor.clipboardImage() == editor.desktop.copy(wideArea));
}

TEST_F(EditorFlow, TextIsTypedEditedCancelledAndEmptied) {
    const QPoint place = wideArea.center();
    editor.type(u"t"_s);
    editor.click(place);
    editor.type(u"vpx"_s);
    editor.key(Key::returnKey);
    editor.type(u"a+-"_s);
    editor.key(Key::returnKey, Modifier::command);
    EXPECT_EQ(editor.steps(3), "toolSelected(9,24,0) textEditingStarted(9,24,0) textCommitted(9,24,1)");
    editor.layers = 1;

    // Size and colour of a text being edited belong to its editor until it is committed.
    const QPoint onText = place + QPoint(12, 0);
    editor.type(u"v"_s);
    editor.session.input().doubleClick(onText);
    editor.click(editor.plusButton());
    editor.type(u"v+"_s);
    editor.key(Key::escape);
    EXPECT_EQ(editor.steps(5), "toolSelected(0,3,1) layerMoved(0,24,1) textEditingStarted(9,24,1) "
                               "sizeChanged(9,25,1) textCancelled(9,25,1)");

    // What is typed there is copied as text, and the capture goes on.
    editor.session.input().doubleClick(onText);
    editor.command('a');
    editor.command('c');
    EXPECT_TRUE(
        waitUntil([&] { return editor.session.clipboard(u"UTF8_STRING"_s) == QByteArray("vpx\na+-"); }));
    editor.command('a');
    editor.key(Key::forwardDelete);
    editor.key(Key::returnKey, Modifier::control);
    EXPECT_EQ(editor.steps(3), "layerMoved(0,24,1) textEditingStarted(9,24,1) textCommitted(9,24,0)");
    editor.layers = 0;
    editor.command('z');
    EXPECT_EQ(editor.steps(), "undo(0,24,1)");
    editor.layers = 1;

    // A new text that is only blank adds nothing; a press elsewhere commits.
    editor.click(editor.toolButton(Editor::text));
    editor.click(place + QPoint(0, 100));
    editor.type(u"  "_s);
    editor.click(editor.toolButton(Editor::selectTool));
    EXPECT_EQ(editor.steps(4),
              "toolSelected(9,24,1) textEditingStarted(9,24,1) textCommitted(9,24,1) toolSelected(0,3,1)");
    EXPECT_TRUE(editor.closeCapture());
}

TEST_F(EditorFlow, SizesAndColoursAreChosenForToolsAndForLayers) {
    // Without a style there is nothing to step.
    editor.type(u"+"_s);
    editor.click(editor.plusButton());
    // Past the select tool to the pen: what is disabled is left out.
    for (const KeyCode key : {tabKey, tabKey, spaceKey})
        editor.key(key);
    editor.type(u"+-"_s);
    editor.click(editor.plusButton());
    editor.click(editor.plusButton());
    editor.click(editor.minusButton());
    EXPECT_EQ(editor.steps(6), "toolSelected(1,3,0) sizeChanged(1,4,0) sizeChanged(1,3,0) sizeChanged(1,4,0) "
                               "sizeChanged(1,5,0) sizeChanged(1,4,0)");
    // Typed into the field; then back on the canvas, where minus takes one away.
    const std::pair<const char*, const char*> typed[] = {
        {"50", "sizeChanged(1,50,0) sizeChanged(1,49,0)"},
        {"vparhlebxt", "sizeChanged(1,48,0)"},
        {"", "sizeChanged(1,47,0)"},
        {"3.5", "sizeChanged(1,46,0)"},
        {"99999999999999999999", "sizeChanged(1,99,0) sizeChanged(1,98,0)"},
        {"0", "sizeChanged(1,1,0) sizeChanged(1,1,0)"},
        {"+7", "sizeChanged(1,7,0) sizeChanged(1,6,0)"},
        {"-5", "sizeChanged(1,1,0) sizeChanged(1,1,0)"},
    };
    for (const auto& [text, expected] : typed) {
        // The press marks the number, so that typing replaces it.
        editor.click(editor.sizeField());
        editor.key(Key::deleteKey);
        editor.type(QString::fromLatin1(text));
        editor.key(Key::returnKey);
        editor.type(u"-"_s);
        const auto steps = 1 + std::ranges::count(std::string_view(expected), ' ');
        EXPECT_EQ(editor.steps(int(steps)), expected) << text;
    }
    // A number still being typed is taken over by what the user does next.
    editor.click(editor.sizeField());
    editor.type(u"8"_s);
    editor.click(editor.toolButton(Editor::line));
    EXPECT_EQ(editor.steps(2), "sizeChanged(1,8,0) toolSelected(5,3,0)");

    // A layer's own size: each step can be undone.
    const QPoint start = wideArea.topLeft() + QPoint(100, 180);
    editor.drag(start, start + QPoint(200, 0));
    editor.layers = 1;
    editor.type(u"v"_s);
    editor.click(start + QPoint(100, 0));
    editor.type(u"++"_s);
    editor.command('z');
    EXPECT_EQ(editor.steps(6), "layerCreated(5,3,1) toolSelected(0,3,1) layerMoved(0,3,1) "
                               "sizeChanged(5,4,1) sizeChanged(5,5,1) undo(0,4,1)");

    constexpr QRgb teal = qRgb(0, 170, 127);
    const xcb_window_t overlay = editor.session.client().focusedWindow();
    ASSERT_TRUE(chooseColor(teal));
    EXPECT_TRUE(becomes(start + QPoint(50, 0), teal));
    // Escape in the panel is the panel's, and the keyboard goes back to the canvas.
    editor.key(Key::escape);
    ASSERT_TRUE(colorPanelCloses());
    ASSERT_TRUE(waitUntil([&] { return editor.session.client().focusedWindow() == overlay; }));
    editor.command('z');
    EXPECT_EQ(editor.steps(2), "colorChanged(5,4,1) undo(0,4,1)");
    EXPECT_TRUE(becomes(start + QPoint(50, 0), teal, false));

    editor.type(u"e"_s);
    ASSERT_TRUE(chooseColor(teal));
    // A press on the canvas puts the panel away.
    editor.click({60, 60});
    ASSERT_TRUE(colorPanelCloses());
    editor.drag(start + QPoint(0, 40), start + QPoint(100, 140));
    editor.layers = 2;
    EXPECT_EQ(editor.steps(3), "toolSelected(6,3,1) colorChanged(6,3,1) layerCreated(6,3,2)");
    EXPECT_TRUE(becomes(start + QPoint(50, 40), teal));

    // Effects have no colour.
    editor.type(u"x"_s);
    editor.drag(start + QPoint(200, 40), start + QPoint(300, 140));
    editor.layers = 3;
    editor.click(editor.colorWell());
    editor.type(u"+"_s);
    EXPECT_EQ(editor.steps(3), "toolSelected(8,12,2) layerCreated(8,12,3) sizeChanged(8,13,3)");
}

TEST_F(EditorFlow, LayersAreChosenDraggedAndDeletedInTheList) {
    const QImage untouched = editor.settledSelection();
    for (const QChar tool : u"plarehb"_s) {
        editor.type(tool);
        const QPoint corner = wideArea.topLeft() + QPoint(30 + 75 * editor.layers, 100);
        editor.drag(corner, corner + QPoint(50, 200));
        ++editor.layers;
    }
    editor.type(u"v"_s);
    EXPECT_TRUE(editor.steps(15).ends_with("layerCreated(7,24,7) toolSelected(0,3,7)"));
    const auto chosen = [&](int row) {
        editor.click(editor.rowLabel(row));
        return editor.steps();
    };
    // Newest first: blur, marker, ellipse, rectangle, arrow, and two more below the edge.
    EXPECT_EQ(chosen(0), "layerSelected(7,24,7)");
    EXPECT_EQ(chosen(4), "layerSelected(2,3,7)");
    // A drag shorter than three points is a click.
    editor.drag(editor.rowIcon(3), editor.rowIcon(3) + QPoint(1, 1));
    EXPECT_EQ(editor.steps(), "layerSelected(3,3,7)");
    // Below the row under the pointer's lower half, above its upper half.
    editor.drag(editor.rowIcon(0), editor.rowIcon(2) + QPoint(0, 8));
    EXPECT_EQ(editor.steps(), "layerReordered(7,3,7)");
    EXPECT_EQ(chosen(2), "layerSelected(7,24,7)");
    EXPECT_EQ(chosen(0), "layerSelected(4,16,7)");
    editor.drag(editor.rowIcon(3), editor.rowIcon(1) - QPoint(0, 8));
    EXPECT_EQ(editor.steps(), "layerReordered(3,16,7)");
    EXPECT_EQ(chosen(1), "layerSelected(3,3,7)");
    // Neither onto itself nor outside the list.
    editor.drag(editor.rowIcon(1), editor.rowIcon(1) + QPoint(0, 8));
    editor.drag(editor.rowIcon(1), {wideArea.center().x(), editor.rowIcon(1).y()});
    EXPECT_EQ(chosen(0), "layerSelected(4,16,7)");

    // Held at the lower edge the list scrolls to its end, and the layer becomes the oldest.
    XTestInput& input = editor.session.input();
    const QRect lastRow(editor.rowIcon(4) - QPoint(8, 8), QSize(120, 16));
    const QImage before = editor.settled(lastRow);
    input.movePointer(editor.rowIcon(0));
    input.pressButton();
    input.movePointer(editor.rowIcon(2));
    input.movePointer(editor.rowIcon(4) + QPoint(0, 11));
    EXPECT_TRUE(waitUntil([&] { return editor.session.screenPixels(lastRow) != before; }));
    editor.settled(lastRow, 100);
    input.releaseButton();
    EXPECT_EQ(editor.steps(), "layerReordered(4,16,7)");
    EXPECT_EQ(chosen(4), "layerSelected(4,16,7)") << "the list is scrolled to its end";

    editor.click(editor.rowTrash(4));
    editor.layers = 6;
    EXPECT_EQ(editor.steps(), "layerDeleted(4,16,7)");
    editor.key(Key::deleteKey);
    editor.command('z');
    EXPECT_EQ(editor.steps(), "undo(0,16,7)");
    for (int left = 10; left > 0; --left)
        editor.command('z');
    EXPECT_TRUE(editor.steps(10).ends_with(",0)"));
    EXPECT_TRUE(shows(untouched));
    EXPECT_TRUE(editor.copy() == editor.desktop.copy(wideArea));
}

TEST_F(EditorFlow, ASecondSelectionIsDrawnBesideTheFirstAndFlipped) {
    editor.type(u"p"_s);
    const QRect second(60, 40, 900, 300);
    ASSERT_TRUE(editor.select(second));
    editor.drag({second.right() + 1, 200}, {20, 200});
    EXPECT_EQ(editor.steps(3), "toolSelected(1,3,0) selectionCreated(0,3,0) selectionResized(0,3,0)");
    // A hint that is shown goes with the capture.
    editor.selection = QRect(20, 40, 40, 300);
    const QPoint button = editor.toolButton(Editor::text);
    const QRect beside(button + QPoint(30, -6), QSize(40, 12));
    const QImage before = editor.settled(beside);
    editor.session.input().movePointer(button);
    EXPECT_TRUE(waitUntil([&] { return editor.session.screenPixels(beside) != before; }));
    EXPECT_TRUE(editor.copy() == editor.desktop.copy(editor.selection));
    EXPECT_TRUE(editor.capture());
    EXPECT_TRUE(editor.closeCapture());
    EXPECT_EQ(editor.end(), 0);
}

TEST_F(EditorFlow, ToolsAndCommandsHaveTheirPlaceOnKeyboardsOfOtherScripts) {
    constexpr KeyCode pKey = 35;
    constexpr KeyCode vKey = 9;
    constexpr KeyCode aKey = 0;
    constexpr KeyCode cKey = 8;
    for (const char* layout : {"ara", "gr", "il", "ru"}) {
        SCOPED_TRACE(layout);
        const auto change = editor.session.start(u"setxkbmap"_s, {u"-layout"_s, QString::fromLatin1(layout)});
        ASSERT_EQ(change->waitForExit(patience), 0);
        editor.key(pKey);
        editor.key(vKey);
        editor.key(aKey, Modifier::control);
        EXPECT_EQ(editor.steps(3), "toolSelected(1,3,0) toolSelected(0,3,0) selectionCreated(0,3,0)");
    }
    editor.key(cKey, Modifier::control);
    ASSERT_TRUE(editor.waitFor("captureClosed"));
    EXPECT_TRUE(editor.clipboardImage() == editor.desktop);
}

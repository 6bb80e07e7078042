#include "Editor/EditorSidebar.h"

#include "Editor/EditorButton.h"
#include "Editor/EditorPanel.h"
#include "Editor/LayerLabel.h"
#include "Editor/LayerRowView.h"
#include "Editor/LayerTableView.h"
#include "EditorTestSupport.h"

#include <QScrollBar>
#include <QWindow>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace EditorTestSupport;

class EditorSidebarTests : public ::testing::Test {
protected:
    void SetUp() override {
        canvas.resize(600, 500);
        sidebar.addHistoryControls(undo, redo);
        sidebar.onSelect = [this](const QUuid& id) { selected.push_back(id); };
        sidebar.onDelete = [this](const QUuid& id) { deleted.push_back(id); };
        sidebar.onReorder = [this](const QUuid& id, int index) { moves.push_back({id, index}); };
        sidebar.place({{400, 100, 84, 326}, {100, 100, 156, 26 + 160}, 1});
        present(canvas);
    }

    void show(int count) {
        layers.clear();
        for (int i = 0; i < count; ++i)
            layers.push_back(layer(AnnotationTool::text, QString::number(i)));
        sidebar.update({layers, {}, AnnotationTool::select, false});
    }
    LayerRowView& row(int index) { return *sidebar.table().rowView(index); }

    Canvas canvas;
    EditorSidebar& sidebar = *new EditorSidebar(canvas);
    EditorButton& undo = *new EditorButton;
    EditorButton& redo = *new EditorButton;
    std::vector<EditorAnnotation> layers;
    std::vector<QUuid> selected, deleted;
    std::vector<std::pair<QUuid, int>> moves;
};

TEST_F(EditorSidebarTests, aThousandLayersNeedOnlyTheRowsInSight) {
    show(1000);
    QScrollBar& bar = *sidebar.table().verticalScrollBar();
    EXPECT_EQ(bar.maximum(), 1000 * 32 - 160);
    for (const int value : {1, 16001, bar.maximum()}) {
        bar.setValue(value);
        const int first = value / 32;
        for (int i = first; i < std::min(first + 5, 1000); ++i) {
            ASSERT_NE(sidebar.table().rowView(i), nullptr) << value;
            EXPECT_EQ(row(i).label().text(), u"Text: %1"_s.arg(999 - i));
            EXPECT_EQ(row(i).y(), i * 32 + 1 - value);
        }
    }
    EXPECT_LE(sidebar.table().findChildren<LayerRowView*>().size(), 7);
}

TEST_F(EditorSidebarTests, theListWorksWithTheKeyboard) {
    show(3);
    LayerTableView& table = sidebar.table();
    table.setFocus();
    QTest::keyClick(&table, Qt::Key_Down);
    QTest::keyClick(&table, Qt::Key_Return);
    EXPECT_EQ(selected, std::vector{layers[1].id});
    QTest::keyClick(&table, Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(moves, (std::vector{std::pair(layers[1].id, 2)}));
    QTest::keyClick(&table, Qt::Key_End);
    QTest::keyClick(&table, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(moves.size(), 1U) << "the last row cannot go further down";
    QTest::keyClick(&table, Qt::Key_Delete);
    EXPECT_EQ(deleted, std::vector{layers[0].id});
}

TEST_F(EditorSidebarTests, thePanelsTakeEveryPressAndLeaveTheRestToTheCanvas) {
    show(2);
    const std::tuple<const char*, QPoint, bool, bool> cases[] = {
        {"emptyCellBesideText", {470, 410}, true, false},
        {"disabledUndo", {420, 150}, false, true},
        {"belowTheRows", {150, 250}, false, true},
        {"betweenTheRows", {150, 158}, false, true},
        {"heading", {150, 110}, false, true},
        {"aboveTheHeading", {150, 101}, false, true},
        {"besideThePanels", {300, 300}, true, false},
        {"row", {150, 140}, false, true},
    };
    undo.setEnabled(false);
    for (const auto& [name, place, reachesCanvas, overPanel] : cases) {
        canvas.presses = 0;
        QTest::mouseClick(canvas.windowHandle(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(canvas.windowHandle(), Qt::LeftButton, {}, place);
        EXPECT_EQ(canvas.presses, reachesCanvas ? 3 : 0) << name;
        EXPECT_EQ(sidebar.isOverPanel(place), overPanel) << name;
    }
}

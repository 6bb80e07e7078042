#include "Editor/EditorSidebar.h"

#include "Editor/CaptureColorWell.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorPanel.h"
#include "Editor/EditorSizeControls.h"
#include "Editor/EditorStepButton.h"
#include "Editor/LayerIcon.h"
#include "Editor/LayerLabel.h"
#include "Editor/LayerRowView.h"
#include "Editor/LayerTableView.h"
#include "Editor/LayerTrashButton.h"
#include "EditorTestSupport.h"

#include <QScrollBar>
#include <QWindow>
#include <gtest/gtest.h>

using namespace EditorTestSupport;

class EditorSidebarTests : public ::testing::Test {
protected:
    void SetUp() override {
        canvas.resize(600, 500);
        sidebar.setGeometry(canvas.rect());
        sidebar.addHistoryControls(undo, redo);
        sidebar.setColorControl(well);
        sidebar.controls().addArrangedSubview(*new EditorStepButton(false));
        sidebar.onTool = [this](AnnotationTool tool) { tools.push_back(tool); };
        sidebar.onSelect = [this](const QUuid& id) { selected.push_back(id); };
        sidebar.onDelete = [this](const QUuid& id) { deleted.push_back(id); };
        sidebar.onReorder = [this](const QUuid& id, int index) { moves.push_back({id, index}); };
        sidebar.place({{400, 100, 84, 326}, {100, 100, 156, 26 + 160}, 1});
        present(canvas);
    }

    void show(std::vector<EditorAnnotation> annotations, AnnotationTool tool = AnnotationTool::select,
              std::optional<QUuid> id = {}) {
        layers = std::move(annotations);
        sidebar.update({layers, id, tool, false});
    }
    void showLayers(int count) {
        std::vector<EditorAnnotation> made;
        for (int i = 0; i < count; ++i)
            made.push_back(layer(AnnotationTool::text, QString::number(i)));
        show(std::move(made));
    }
    LayerRowView& row(int index) { return *sidebar.table().rowView(index); }

    /// Drags a row's icon to a place in the list's own points and lets it go there.
    void drag(int index, QPoint target) {
        LayerIcon& icon = row(index).icon();
        const auto toIcon = [&](QPoint p) { return icon.mapFrom(&sidebar.table(), p); };
        QTest::mousePress(&icon, Qt::LeftButton, {}, QPoint(10, 10));
        QTest::mouseMove(&icon, QPoint(10, 15));
        QTest::mouseMove(&icon, toIcon(target));
        QTest::mouseRelease(&icon, Qt::LeftButton, {}, toIcon(target));
    }

    Canvas canvas;
    EditorSidebar& sidebar = *new EditorSidebar(&canvas);
    EditorButton& undo = *new EditorButton;
    EditorButton& redo = *new EditorButton;
    CaptureColorWell& well = *new CaptureColorWell;
    std::vector<EditorAnnotation> layers;
    std::vector<AnnotationTool> tools;
    std::vector<QUuid> selected, deleted;
    std::vector<std::pair<QUuid, int>> moves;
};

TEST_F(EditorSidebarTests, rowsReadNewestFirstUnderACountingHeading) {
    show({layer(AnnotationTool::pen), layer(AnnotationTool::arrow),
          layer(AnnotationTool::text, QStringLiteral("a\nb"))});
    EXPECT_EQ(sidebar.heading(), QStringLiteral("Layers · 3"));
    EXPECT_EQ(row(0).label().text(), QStringLiteral("Text: a b"));
    EXPECT_EQ(row(1).label().text(), QStringLiteral("Arrow"));
    EXPECT_EQ(row(2).label().text(), QStringLiteral("Pen"));
    EXPECT_EQ(row(1).icon().toolTip(), QStringLiteral("Drag to reorder Arrow layer"));
    EXPECT_EQ(row(2).trash().accessibleName(), QStringLiteral("Delete Pen"));
    EXPECT_EQ(row(2).trash().annotationID(), layers[0].id);
    show({});
    EXPECT_EQ(sidebar.heading(), QStringLiteral("Layers · 0"));
    EXPECT_EQ(sidebar.table().rowView(0), nullptr);
}

TEST_F(EditorSidebarTests, rowsHaveTheirStatedPlaces) {
    show({layer(AnnotationTool::pen), layer(AnnotationTool::pen)});
    EXPECT_EQ(sidebar.table().geometry(), QRect(0, 26, 156, 160));
    EXPECT_EQ(row(1).geometry(), QRect(0, 33, 156, 30));
    EXPECT_EQ(row(0).icon().geometry(), QRect(4, 5, 20, 20));
    EXPECT_EQ(row(0).label().geometry(), QRect(26, 6, 104, 18));
    EXPECT_EQ(row(0).trash().geometry(), QRect(132, 3, 24, 24));
}

TEST_F(EditorSidebarTests, aSelectionFromOutsideIsShownAndNotReported) {
    show({layer(AnnotationTool::pen), layer(AnnotationTool::pen)});
    sidebar.update({layers, layers[0].id, AnnotationTool::select, false});
    EXPECT_EQ(sidebar.table().selectedRow(), 1);
    sidebar.update({layers, QUuid::createUuid(), AnnotationTool::select, false});
    EXPECT_EQ(sidebar.table().selectedRow(), std::nullopt);
    EXPECT_TRUE(selected.empty());
}

TEST_F(EditorSidebarTests, clicksOnIconLabelAndRowSelectTheLayer) {
    show({layer(AnnotationTool::pen), layer(AnnotationTool::line), layer(AnnotationTool::blur)});
    QTest::mouseClick(&row(0).icon(), Qt::LeftButton);
    QTest::mouseClick(&row(1).label(), Qt::LeftButton);
    QTest::mouseClick(&row(2), Qt::LeftButton, {}, QPoint(1, 1));
    EXPECT_EQ(selected, (std::vector{layers[2].id, layers[1].id, layers[0].id}));
    EXPECT_TRUE(moves.empty());
    EXPECT_EQ(canvas.presses, 0);
}

TEST_F(EditorSidebarTests, aPressThatHardlyMovesIsAClick) {
    show({layer(AnnotationTool::pen), layer(AnnotationTool::line)});
    LayerIcon& icon = row(0).icon();
    QTest::mousePress(&icon, Qt::LeftButton, {}, QPoint(10, 10));
    QTest::mouseMove(&icon, QPoint(12, 12));
    EXPECT_FALSE(icon.isDragging());
    QTest::mouseRelease(&icon, Qt::LeftButton, {}, QPoint(12, 12));
    EXPECT_EQ(selected, std::vector{layers[1].id});
}

struct DropCase {
    const char* name;
    int from;
    QPoint target;
    std::optional<int> index;
};
const DropCase dropCases[] = {
    {"newestBelowOldest", 0, {14, 2 * 32 + 20}, 0},
    {"oldestAboveNewest", 2, {14, 4}, 2},
    {"underTheRows", 0, {14, 130}, 0},
    {"ownUpperHalf", 1, {60, 32 + 10}, std::nullopt},
    {"lowerHalfOfTheRowAbove", 1, {14, 20}, std::nullopt},
    {"besideTheList", 0, {200, 80}, std::nullopt},
    {"aboveTheList", 2, {14, -30}, std::nullopt},
};

TEST_F(EditorSidebarTests, aDroppedLayerIsReportedWithItsNewIndex) {
    for (const DropCase& c : dropCases) {
        moves.clear();
        show({layer(AnnotationTool::pen), layer(AnnotationTool::line), layer(AnnotationTool::blur)});
        const QUuid moved = layers[std::size_t(2 - c.from)].id;
        drag(c.from, c.target);
        const std::vector<std::pair<QUuid, int>> expected =
            c.index ? std::vector{std::pair(moved, *c.index)} : std::vector<std::pair<QUuid, int>>();
        EXPECT_EQ(moves, expected) << c.name;
        EXPECT_EQ(sidebar.table().layerInsertion(), std::nullopt) << c.name;
        EXPECT_TRUE(sidebar.table().dropIndicator().isHidden()) << c.name;
    }
    EXPECT_TRUE(selected.empty());
}

TEST_F(EditorSidebarTests, aReloadDuringADragEndsItWithoutAMove) {
    show({layer(AnnotationTool::pen), layer(AnnotationTool::line)});
    LayerIcon& icon = row(0).icon();
    QTest::mousePress(&icon, Qt::LeftButton, {}, QPoint(10, 10));
    QTest::mouseMove(&icon, QPoint(10, 60));
    EXPECT_EQ(sidebar.table().layerInsertion(), 2);
    EXPECT_FALSE(sidebar.table().dropIndicator().isHidden());
    sidebar.update({layers, {}, AnnotationTool::select, true});
    EXPECT_EQ(sidebar.table().layerInsertion(), std::nullopt);
    QTest::mouseRelease(&icon, Qt::LeftButton, {}, QPoint(10, 60));
    EXPECT_TRUE(moves.empty());
    EXPECT_TRUE(selected.empty());
}

TEST_F(EditorSidebarTests, aDragAtTheEdgeScrollsAndStillMovesTheLayerItBeganWith) {
    showLayers(100);
    LayerIcon& icon = row(0).icon();
    const QUuid moved = layers.back().id;
    const auto at = [&](int y) { return icon.mapFrom(&sidebar.table(), QPoint(14, y)); };
    QTest::mousePress(&icon, Qt::LeftButton, {}, QPoint(10, 10));
    for (int i = 0; i < 60; ++i)
        QTest::mouseMove(&icon, at(159 + i % 2));
    EXPECT_GT(sidebar.table().verticalScrollBar()->value(), 5 * 32);
    const int insertion = *sidebar.table().layerInsertion();
    QTest::mouseRelease(&icon, Qt::LeftButton, {}, at(159));
    ASSERT_EQ(moves.size(), 1U);
    EXPECT_EQ(moves[0].first, moved);
    EXPECT_NEAR(moves[0].second, 99 - (insertion - 1), 1);
}

TEST_F(EditorSidebarTests, theTrashButtonDeletesItsOwnLayer) {
    show({layer(AnnotationTool::pen), layer(AnnotationTool::line)});
    QTest::mouseClick(&row(1).trash(), Qt::LeftButton);
    EXPECT_EQ(deleted, std::vector{layers[0].id});
    EXPECT_TRUE(selected.empty());
}

TEST_F(EditorSidebarTests, aThousandLayersNeedOnlyTheRowsInSight) {
    showLayers(1000);
    const auto views = sidebar.table().findChildren<LayerRowView*>();
    EXPECT_LE(views.size(), 7);
    QScrollBar& bar = *sidebar.table().verticalScrollBar();
    EXPECT_EQ(bar.maximum(), 1000 * 32 - 160);
    for (const int value : {1, 33, 16000, 16001, bar.maximum()}) {
        bar.setValue(value);
        const int first = value / 32;
        for (int i = first; i < std::min(first + 5, 1000); ++i) {
            ASSERT_NE(sidebar.table().rowView(i), nullptr) << value;
            EXPECT_EQ(row(i).label().text(), QStringLiteral("Text: %1").arg(999 - i));
            EXPECT_EQ(row(i).y(), i * 32 + 1 - value);
        }
    }
    EXPECT_LE(sidebar.table().findChildren<LayerRowView*>().size(), 7);
    QCoreApplication::processEvents();
    EXPECT_LT(sidebar.table().viewport()->width(), 156) << "rows make room for the scroll bar";
}

TEST_F(EditorSidebarTests, aPanelMadeForAllItsRowsNeedsNoScrollBarAtAnyScale) {
    for (int percent = 40; percent <= 150; ++percent) {
        const double scale = percent / 100.0;
        for (int rows = 1; rows <= 5; ++rows) {
            showLayers(rows);
            sidebar.place({.tools = {0, 0, 84 * scale, 326 * scale},
                           .layers = {200, 0, 156 * scale, (26 + 32 * rows) * scale},
                           .scale = scale});
            EXPECT_EQ(sidebar.table().verticalScrollBar()->maximum(), 0) << percent << ' ' << rows;
        }
    }
}

TEST_F(EditorSidebarTests, anUpdateRepaintsOnlyTheRowThatChanged) {
    struct PaintCounter : QObject {
        int paints = 0;
        bool eventFilter(QObject*, QEvent* event) override {
            paints += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
    };
    showLayers(4);
    QCoreApplication::processEvents();
    std::array<PaintCounter, 4> counters;
    for (int i = 0; i < 4; ++i)
        row(i).label().installEventFilter(&counters[std::size_t(i)]);
    sidebar.update({layers, {}, AnnotationTool::select, false});
    QCoreApplication::processEvents();
    layers[2].text = QStringLiteral("new");
    sidebar.update({layers, {}, AnnotationTool::select, false});
    QCoreApplication::processEvents();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(counters[std::size_t(i)].paints, i == 1 ? 1 : 0) << i;
}

TEST_F(EditorSidebarTests, theListWorksWithTheKeyboard) {
    show({layer(AnnotationTool::pen), layer(AnnotationTool::line), layer(AnnotationTool::blur)});
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

TEST_F(EditorSidebarTests, toolButtonsReportTheirToolAndShowTheCurrentOne) {
    for (const AnnotationTool tool : AnnotationTools::displayOrder)
        QTest::mouseClick(&sidebar.button(tool), Qt::LeftButton);
    EXPECT_TRUE(std::ranges::equal(tools, AnnotationTools::displayOrder));
    show({}, AnnotationTool::marker);
    for (const AnnotationTool tool : AnnotationTools::displayOrder)
        EXPECT_EQ(sidebar.button(tool).isHighlighted(), tool == AnnotationTool::marker);
    EXPECT_EQ(sidebar.button(AnnotationTool::marker).toolTip(), QStringLiteral("Marker (H)"));
    EXPECT_EQ(sidebar.button(AnnotationTool::marker).accessibleName(), QStringLiteral("Marker"));
    EXPECT_EQ(sidebar.button(AnnotationTool::blur).objectName(), QStringLiteral("blur"));
}

TEST_F(EditorSidebarTests, controlsStandInTheirCells) {
    const auto at = [&](const QWidget& control) { return control.pos(); };
    EXPECT_EQ(sidebar.controls().geometry(), QRect(0, 0, 84, 32));
    EXPECT_EQ(at(undo), QPoint(0, 32));
    EXPECT_EQ(at(redo), QPoint(42, 32));
    EXPECT_EQ(at(sidebar.button(AnnotationTool::select)), QPoint(0, 74));
    EXPECT_EQ(at(well), QPoint(42, 74));
    EXPECT_EQ(at(sidebar.button(AnnotationTool::pen)), QPoint(0, 116));
    EXPECT_EQ(at(sidebar.button(AnnotationTool::marker)), QPoint(42, 116));
    EXPECT_EQ(at(sidebar.button(AnnotationTool::rectangle)), QPoint(0, 158));
    EXPECT_EQ(at(sidebar.button(AnnotationTool::ellipse)), QPoint(42, 158));
    EXPECT_EQ(at(sidebar.button(AnnotationTool::line)), QPoint(0, 200));
    EXPECT_EQ(at(sidebar.button(AnnotationTool::arrow)), QPoint(42, 200));
    EXPECT_EQ(at(sidebar.button(AnnotationTool::blur)), QPoint(0, 242));
    EXPECT_EQ(at(sidebar.button(AnnotationTool::pixelate)), QPoint(42, 242));
    EXPECT_EQ(at(sidebar.button(AnnotationTool::text)), QPoint(0, 284));
}

TEST_F(EditorSidebarTests, pressesOutsideTheControlsReachTheCanvas) {
    show({layer(AnnotationTool::pen)});
    struct PressCase {
        const char* name;
        QPoint place;
        bool reachesCanvas;
        bool overPanel;
    };
    const PressCase cases[] = {
        {"openCanvas", {300, 50}, true, false},    {"emptyCellBesideText", {470, 410}, true, false},
        {"textTool", {420, 410}, false, true},     {"disabledUndo", {420, 150}, false, true},
        {"layersHeading", {150, 112}, true, true}, {"belowTheRows", {150, 250}, true, true},
        {"row", {150, 140}, false, true},
    };
    undo.setEnabled(false);
    for (const PressCase& c : cases) {
        canvas.presses = 0;
        QTest::mouseClick(canvas.windowHandle(), Qt::LeftButton, {}, c.place);
        EXPECT_EQ(canvas.presses, c.reachesCanvas ? 1 : 0) << c.name;
        EXPECT_EQ(sidebar.isOverPanel(c.place), c.overPanel) << c.name;
    }
    EXPECT_EQ(sidebar.childAt(470, 410), nullptr) << "the empty cell shows the canvas's own pointer";
    sidebar.hide();
    EXPECT_FALSE(sidebar.isOverPanel({420, 410}));
}

TEST_F(EditorSidebarTests, tabVisitsTheControlsAsTheyStand) {
    undo.setAccessibleName(QStringLiteral("Undo"));
    redo.setAccessibleName(QStringLiteral("Redo"));
    QStringList visited;
    QWidget* control = sidebar.controls().arrangedSubviews().front();
    for (int i = 0; i < 14; ++i, control = control->nextInFocusChain()) {
        while (!(control->focusPolicy() & Qt::TabFocus))
            control = control->nextInFocusChain();
        visited << control->accessibleName();
    }
    EXPECT_EQ(visited.join(QLatin1Char(',')).toStdString(),
              "Decrease size,Undo,Redo,Select,Drawing color,Pen,Marker,Rectangle,Ellipse,Line,Arrow,"
              "Blur Marker,Pixelate,Text");
}

TEST_F(EditorSidebarTests, theSidebarStaysLightInADarkPalette) {
    QPalette dark;
    dark.setColor(QPalette::Window, Qt::black);
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Text, Qt::white);
    canvas.setPalette(dark);
    show({layer(AnnotationTool::pen)});
    const QImage image = sidebar.layerPanel().grab().toImage();
    int dimmed = 0;
    for (int x = 10; x < 140; ++x) {
        EXPECT_GT(qGray(image.pixel(x, 120)), 230);
        dimmed += qGray(image.pixel(x, 14)) < 150 ? 1 : 0;
    }
    EXPECT_GT(dimmed, 5) << "the heading is written in dark ink";
}

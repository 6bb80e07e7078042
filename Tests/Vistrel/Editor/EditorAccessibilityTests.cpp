#include "Editor/AnnotationTextView.h"
#include "Editor/CaptureColorWell.h"
#include "Editor/EditorActionBar.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorPanel.h"
#include "Editor/EditorSidebar.h"
#include "Editor/EditorSizeField.h"
#include "Editor/LayerIcon.h"
#include "Editor/LayerRowView.h"
#include "Editor/LayerTableView.h"
#include "Editor/LayerTrashButton.h"
#include "EditorTestSupport.h"

#include <QAccessible>
#include <gtest/gtest.h>

using namespace EditorTestSupport;

class EditorAccessibilityTests : public ::testing::Test {
protected:
    void SetUp() override {
        canvas.resize(600, 500);
        sidebar.setGeometry(canvas.rect());
        sidebar.place({{400, 100, 84, 326}, {100, 100, 156, 186}, 1});
        layers = {layer(AnnotationTool::pen), layer(AnnotationTool::text, QStringLiteral("Hi"))};
        sidebar.update({layers, layers[1].id, AnnotationTool::pen, false});
        present(canvas);
    }
    static QAccessibleInterface& of(QWidget& widget) {
        return *QAccessible::queryAccessibleInterface(&widget);
    }

    Canvas canvas;
    EditorSidebar& sidebar = *new EditorSidebar(&canvas);
    std::vector<EditorAnnotation> layers;
};

TEST_F(EditorAccessibilityTests, everyControlSaysWhatItIs) {
    auto& bar = *new EditorActionBar(&canvas);
    auto& field = *new EditorSizeField(&canvas);
    auto& well = *new CaptureColorWell(&canvas);
    auto& text = *new AnnotationTextView(&canvas);
    LayerTableView& table = sidebar.table();
    LayerRowView& row = *table.rowView(0);
    struct RoleCase {
        QWidget& widget;
        QAccessible::Role role;
        const char* name;
    };
    const RoleCase cases[] = {
        {sidebar.tools(), QAccessible::ToolBar, "Tools"},
        {sidebar.layerPanel(), QAccessible::ToolBar, "Layers"},
        {bar, QAccessible::ToolBar, "Actions"},
        {table, QAccessible::List, "Annotation layers, newest first"},
        {row, QAccessible::ListItem, "Text: Hi"},
        {row.icon(), QAccessible::Button, "Drag to reorder Text layer"},
        {row.trash(), QAccessible::Button, "Delete Text"},
        {field, QAccessible::EditableText, "Size"},
        {well, QAccessible::Button, "Drawing color"},
        {text, QAccessible::EditableText, "Text"},
        {sidebar.button(AnnotationTool::marker), QAccessible::RadioButton, "Marker"},
    };
    for (const RoleCase& c : cases) {
        EXPECT_EQ(of(c.widget).role(), c.role) << c.name;
        EXPECT_EQ(of(c.widget).text(QAccessible::Name).toStdString(), c.name);
        EXPECT_FALSE(c.widget.objectName().isEmpty()) << c.name;
    }
}

TEST_F(EditorAccessibilityTests, statesTellTheCurrentToolAndLayer) {
    EXPECT_TRUE(of(sidebar.button(AnnotationTool::pen)).state().checked);
    EXPECT_FALSE(of(sidebar.button(AnnotationTool::line)).state().checked);
    EXPECT_TRUE(of(*sidebar.table().rowView(0)).state().selected);
    EXPECT_FALSE(of(*sidebar.table().rowView(1)).state().selected);
}

TEST_F(EditorAccessibilityTests, layersCanBeSelectedAndDeletedWithoutAPointer) {
    QUuid chosen, deleted;
    sidebar.onSelect = [&](const QUuid& id) { chosen = id; };
    sidebar.onDelete = [&](const QUuid& id) { deleted = id; };
    QAccessibleActionInterface* row = of(*sidebar.table().rowView(1)).actionInterface();
    ASSERT_EQ(row->actionNames().size(), 2);
    row->doAction(row->actionNames().at(0));
    row->doAction(row->actionNames().at(1));
    EXPECT_EQ(chosen, layers[0].id);
    EXPECT_EQ(deleted, layers[0].id);

    AnnotationTool pressed = AnnotationTool::select;
    sidebar.onTool = [&](AnnotationTool tool) { pressed = tool; };
    of(sidebar.button(AnnotationTool::ellipse))
        .actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(pressed, AnnotationTool::ellipse);
}

TEST_F(EditorAccessibilityTests, theTreeFollowsThePanels) {
    QAccessibleInterface& table = of(sidebar.table());
    int rows = 0;
    const std::function<void(QAccessibleInterface*)> count = [&](QAccessibleInterface* node) {
        for (int i = 0; i < node->childCount(); ++i) {
            QAccessibleInterface* child = node->child(i);
            rows += child->role() == QAccessible::ListItem && !child->state().invisible ? 1 : 0;
            count(child);
        }
    };
    count(&table);
    EXPECT_EQ(rows, 2);
}

#include "Editor/EditorSidebar.h"

#include "Editor/CaptureColorWell.h"
#include "Editor/DevicePixels.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorFont.h"
#include "Editor/EditorPanel.h"
#include "Editor/EditorSizeControls.h"
#include "Editor/LayerTableView.h"
#include "Editor/ToolsPanelGrid.h"

#include <QLabel>

namespace {

constexpr double toolIconSize = 40;
constexpr double headingFontSize = 12;
constexpr double headingRoom = 26;

struct ToolPlace {
    AnnotationTool tool;
    int row; // upwards from the bottom
    int column;
};

constexpr ToolPlace toolPlaces[] = {
    {AnnotationTool::select, 5, 0},    {AnnotationTool::pen, 4, 0},     {AnnotationTool::marker, 4, 1},
    {AnnotationTool::rectangle, 3, 0}, {AnnotationTool::ellipse, 3, 1}, {AnnotationTool::line, 2, 0},
    {AnnotationTool::arrow, 2, 1},     {AnnotationTool::blur, 1, 0},    {AnnotationTool::pixelate, 1, 1},
    {AnnotationTool::text, 0, 0},
};
constexpr ToolPlace colorPlace = {AnnotationTool::select, 5, 1};

} // namespace

EditorSidebar::EditorSidebar(QWidget& canvas)
    : QObject(&canvas),
      toolsPanel(new EditorPanel(&canvas)),
      layersPanel(new EditorPanel(&canvas)),
      sizeControls(new EditorSizeControls(toolsPanel)),
      headingLabel(new QLabel(QStringLiteral("Layers"), layersPanel)),
      layerTable(new LayerTableView(layersPanel)) {
    setObjectName(QStringLiteral("editorSidebar"));
    buildTools();
    buildLayers();
}

void EditorSidebar::buildTools() {
    toolsPanel->setObjectName(QStringLiteral("toolsPanel"));
    toolsPanel->setAccessibleName(QStringLiteral("Tools"));
    for (const AnnotationTool tool : AnnotationTools::displayOrder) {
        auto* made = new EditorButton(toolsPanel);
        const QString title = AnnotationTools::title(tool);
        made->setObjectName(AnnotationTools::name(tool));
        made->setAccessibleName(title);
        made->setToolTip(QStringLiteral("%1 (%2)").arg(title, AnnotationTools::key(tool).toUpper()));
        made->setIconImage(AnnotationTools::name(tool), AnnotationTools::symbol(tool), toolIconSize);
        made->setHighlightable(true);
        made->onAction = [this, tool] {
            if (onTool)
                onTool(tool);
        };
        buttons[static_cast<std::size_t>(tool)] = made;
    }
}

void EditorSidebar::buildLayers() {
    layersPanel->setObjectName(QStringLiteral("layersPanel"));
    layersPanel->setAccessibleName(QStringLiteral("Layers"));
    headingLabel->setObjectName(QStringLiteral("layersHeading"));
    headingLabel->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    layerTable->onSelect = [this](const QUuid& layer) {
        if (onSelect)
            onSelect(layer);
    };
    layerTable->onDelete = [this](const QUuid& layer) {
        if (onDelete)
            onDelete(layer);
    };
    layerTable->onReorder = [this](const QUuid& layer, int index) {
        if (onReorder)
            onReorder(layer, index);
    };
}

void EditorSidebar::update(const Content& content) {
    if (content.force || LayerListRules::differ(layerTable->rows(), content.annotations)) {
        layerTable->setRows(LayerListRules::rows(content.annotations));
        headingLabel->setText(QStringLiteral("Layers · %1").arg(rowCount()));
    } else if (rowCount() == 0) {
        headingLabel->setText(QStringLiteral("Layers · 0"));
    }
    std::optional<int> row;
    if (content.selected) {
        const auto found = std::ranges::find(layerTable->rows(), *content.selected, &LayerRow::id);
        if (found != layerTable->rows().end())
            row = int(found - layerTable->rows().begin());
    }
    layerTable->setSelectedRow(row);
    for (const AnnotationTool tool : AnnotationTools::displayOrder)
        button(tool).setHighlighted(tool == content.tool);
}

void EditorSidebar::addHistoryControls(EditorButton& undo, EditorButton& redo) {
    historyButtons = {&undo, &redo};
    if (!undo.hasIconImage())
        undo.setIconImage(QStringLiteral("undo"), QStringLiteral("arrow.uturn.backward"), toolIconSize);
    if (!redo.hasIconImage())
        redo.setIconImage(QStringLiteral("redo"), QStringLiteral("arrow.uturn.forward"), toolIconSize);
    for (EditorButton* added : historyButtons) {
        added->setParent(toolsPanel);
        added->show();
    }
    layoutTools();
}

void EditorSidebar::setColorControl(CaptureColorWell& well) {
    colorControl = &well;
    well.setParent(toolsPanel);
    well.show();
    layoutTools();
}

void EditorSidebar::place(const Frames& wanted) {
    if (frames == wanted)
        return;
    frames = wanted;
    for (EditorPanel* panel : {toolsPanel, layersPanel})
        EditorButton::dismissHints(*panel);
    toolsPanel->setGeometry(DevicePixels::rounded(frames.tools));
    layersPanel->setGeometry(DevicePixels::rounded(frames.layers));
    layoutTools();
    layoutLayers();
}

void EditorSidebar::layoutTools() {
    const ToolsPanelGrid grid{frames.scale, toolsPanel->size()};
    const auto shape = grid.shape();
    toolsPanel->setShape({shape.begin(), shape.end()}, grid.radius());
    sizeControls->setMagnification(frames.scale);
    sizeControls->setGeometry(grid.strip());
    const auto stand = [&](EditorButton& button, int row, int column) {
        button.setMagnification(frames.scale);
        button.setHoverRadius(grid.radius());
        button.setGeometry(grid.cellRect(row, column));
    };
    for (const ToolPlace& place : toolPlaces)
        stand(button(place.tool), place.row, place.column);
    for (int column = 0; column < 2; ++column)
        if (EditorButton* history = historyButtons[std::size_t(column)])
            stand(*history, ToolsPanelGrid::historyRow, column);
    if (colorControl)
        colorControl->setGeometry(grid.cellRect(colorPlace.row, colorPlace.column));
}

void EditorSidebar::layoutLayers() {
    const double scale = frames.scale;
    const QSizeF size = layersPanel->size();
    layersPanel->setShape({QRectF(QPointF(0, 0), size)}, ToolsPanelGrid::designRadius * scale);
    headingLabel->setFont(EditorFont::system(headingFontSize * scale, QFont::DemiBold));
    headingLabel->setGeometry(DevicePixels::roundedEdges(
        {6 * scale, 5 * scale, std::max(size.width() - 12 * scale, 0.0), 18 * scale}));
    layerTable->setMagnification(scale);
    const double top = headingRoom * scale;
    layerTable->setGeometry(
        DevicePixels::roundedEdges({0, top, size.width(), std::max(size.height() - top, 0.0)}));
}

void EditorSidebar::setVisible(bool visible) {
    toolsPanel->setVisible(visible);
    layersPanel->setVisible(visible);
    if (visible)
        updateFocusOrder();
}

bool EditorSidebar::isHidden() const {
    return toolsPanel->isHidden();
}

void EditorSidebar::updateFocusOrder() {
    std::vector<QWidget*> order;
    for (QWidget* item : sizeControls->arrangedSubviews())
        order.push_back(item);
    for (EditorButton* history : historyButtons)
        order.push_back(history);
    order.push_back(buttons[static_cast<std::size_t>(AnnotationTool::select)]);
    order.push_back(colorControl);
    for (const ToolPlace& place : toolPlaces)
        if (place.tool != AnnotationTool::select)
            order.push_back(&button(place.tool));
    order.push_back(layerTable);
    std::erase(order, nullptr);
    for (std::size_t i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
}

QString EditorSidebar::heading() const {
    return headingLabel->text();
}

int EditorSidebar::rowCount() const {
    return int(layerTable->rows().size());
}

bool EditorSidebar::isOverPanel(QPointF position) const {
    for (const EditorPanel* panel : {toolsPanel, layersPanel})
        if (!panel->isHidden() && panel->isInside(position - panel->pos()))
            return true;
    return false;
}

#pragma once

#include "Annotations/EditorAnnotation.h"

#include <QObject>

#include <array>
#include <functional>
#include <span>

class CaptureColorWell;
class EditorButton;
class EditorPanel;
class EditorSizeControls;
class LayerTableView;
class QLabel;

/// The tools panel and the layers panel over a canvas. Owns no editing state: shows what it is given and
/// reports what the user wants. Frames are the canvas's y-down points. Not a widget itself: one that covered
/// the canvas would be what the toolkit holds for pressed in every gesture beside the panels.
class EditorSidebar : public QObject {
    Q_OBJECT
public:
    struct Content {
        /// Oldest first.
        std::span<const EditorAnnotation> annotations;
        std::optional<QUuid> selected;
        AnnotationTool tool = AnnotationTool::select;
        /// Builds the rows again even if none has changed.
        bool force = false;
    };
    struct Frames {
        QRectF tools;
        QRectF layers;
        double scale = 1;

        friend bool operator==(const Frames&, const Frames&) = default;
    };

    /// The panels are children of the canvas, which owns this too.
    explicit EditorSidebar(QWidget& canvas);

    std::function<void(AnnotationTool)> onTool;
    std::function<void(const QUuid&)> onSelect;
    std::function<void(const QUuid&)> onDelete;
    /// The layer and its new index in the annotation list, oldest first, counted without the layer.
    std::function<void(const QUuid&, int)> onReorder;

    void setVisible(bool visible);
    bool isHidden() const;
    void update(const Content& content);
    /// Installs the two history buttons and takes ownership of them.
    void addHistoryControls(EditorButton& undo, EditorButton& redo);
    /// Installs the colour well and takes ownership of it.
    void setColorControl(CaptureColorWell& well);
    /// Stands the two panels at their frames, magnified. Everything outside them belongs to the canvas.
    void place(const Frames& frames);

    /// The size strip; its owner fills it.
    EditorSizeControls& controls() const { return *sizeControls; }
    EditorPanel& tools() const { return *toolsPanel; }
    EditorPanel& layerPanel() const { return *layersPanel; }
    LayerTableView& table() const { return *layerTable; }
    EditorButton& button(AnnotationTool tool) const { return *buttons[static_cast<std::size_t>(tool)]; }
    QString heading() const;
    int rowCount() const;
    /// True over a panel that is shown; `position` in the canvas's points.
    bool isOverPanel(QPointF position) const;

private:
    void buildTools();
    void buildLayers();
    void layoutTools();
    void layoutLayers();
    void updateFocusOrder();

    Frames frames;
    EditorPanel* toolsPanel;
    EditorPanel* layersPanel;
    EditorSizeControls* sizeControls;
    QLabel* headingLabel;
    LayerTableView* layerTable;
    std::array<EditorButton*, AnnotationTools::count> buttons{};
    std::array<EditorButton*, 2> historyButtons{};
    CaptureColorWell* colorControl = nullptr;
};

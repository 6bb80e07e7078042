#include "Overlay/OverlayPanels.h"

#include "Annotations/ViewFlip.h"
#include "Editor/CaptureColorWell.h"
#include "Editor/EditorActionBar.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorPanel.h"
#include "Editor/EditorSidebar.h"
#include "Editor/EditorSizeControls.h"
#include "Editor/EditorSizeField.h"
#include "Editor/EditorStepButton.h"
#include "VistrelCore/EditorLayout.h"

namespace {

constexpr double actionIconSize = 39;
constexpr double leastActionWidth = 196;
constexpr double rowPitch = 32;
constexpr double highestList = 160;
constexpr double headingHeight = 26;

void name(QWidget& control, const QString& objectName, const QString& accessibleName) {
    control.setObjectName(objectName);
    control.setAccessibleName(accessibleName);
}

} // namespace

OverlayPanels::OverlayPanels(QWidget& canvasWidget, OverlayEditor& overlayEditor, Actions actions)
    : canvas(canvasWidget),
      editor(overlayEditor),
      sidebar(new EditorSidebar(canvas)),
      actionBar(new EditorActionBar(&canvas)) {
    sidebar->onTool = [this](AnnotationTool tool) { commands().selectTool(tool); };
    sidebar->onSelect = [this](const QUuid& id) { commands().selectAnnotation(id); };
    sidebar->onDelete = [this](const QUuid& id) { commands().deleteAnnotation(id); };
    sidebar->onReorder = [this](const QUuid& id, int index) { commands().reorderAnnotation(id, index); };
    buildSizeControls();
    buildColorWell();
    buildHistory();
    buildActions(std::move(actions));
    setVisible(false);
}

LayerCommands& OverlayPanels::commands() {
    editor.session.completeGesture();
    // Its field loses the keyboard, which commits it for the tool or layer it was typed for.
    if (sizeField->hasFocus())
        editor.layers.returnFocus();
    return editor.layers;
}

void OverlayPanels::buildSizeControls() {
    EditorSizeControls& strip = sidebar->controls();
    auto* minus = new EditorStepButton(false, &strip);
    auto* plus = new EditorStepButton(true, &strip);
    name(*minus, QStringLiteral("decreaseSize"), QStringLiteral("Decrease size"));
    name(*plus, QStringLiteral("increaseSize"), QStringLiteral("Increase size"));
    minus->onAction = [this] { commands().stepSize(-1); };
    plus->onAction = [this] { commands().stepSize(1); };

    sizeField = new EditorSizeField(&strip);
    name(*sizeField, QStringLiteral("drawingWidth"), QStringLiteral("Size"));
    sizeField->setToolTip(QStringLiteral("Size (1–99). Use + or − to adjust."));
    sizeField->onCommit = [this] {
        const bool endsHere = sizeField->hasFocus();
        editor.layers.commitSize(EditorSizeField::number(sizeField->text()));
        shown.reset();
        show(editor.session.document);
        // When editing ended because another control was chosen, the keyboard stays there.
        if (endsHere)
            editor.layers.returnFocus();
    };
    strip.addArrangedSubview(*minus);
    strip.addArrangedSubview(*plus);
    strip.insertArrangedSubview(*sizeField, 1);
    sizeControls = {minus, sizeField, plus};
}

void OverlayPanels::buildColorWell() {
    colorWell = new CaptureColorWell(&sidebar->tools());
    name(*colorWell, QStringLiteral("drawingColor"), QStringLiteral("Drawing color"));
    colorWell->setToolTip(QStringLiteral("Drawing color"));
    colorWell->onColor = [this](const QColor& color) {
        commands().setDrawingColor(color);
        editor.layers.returnFocus();
    };
    colorWell->onPickerClosed = [this] {
        if (!canvas.isVisible())
            return;
        canvas.window()->activateWindow();
        editor.layers.returnFocus();
    };
    sidebar->setColorControl(*colorWell);
}

void OverlayPanels::buildHistory() {
    undoButton = new EditorButton(&sidebar->tools());
    redoButton = new EditorButton(&sidebar->tools());
    name(*undoButton, QStringLiteral("undo"), QStringLiteral("Undo"));
    name(*redoButton, QStringLiteral("redo"), QStringLiteral("Redo"));
    undoButton->setToolTip(QStringLiteral("Undo (⌘Z)"));
    redoButton->setToolTip(QStringLiteral("Redo (⌘⇧Z)"));
    undoButton->onAction = [this] { commands().undo(); };
    redoButton->onAction = [this] { commands().redo(); };
    sidebar->addHistoryControls(*undoButton, *redoButton);
}

void OverlayPanels::buildActions(Actions actions) {
    EditorButton& record = addAction(QStringLiteral("recording"), QStringLiteral("record.circle"),
                                     QStringLiteral("Start Recording"), QStringLiteral("Start Recording"));
    record.setEnabled(false);
    EditorButton& share = addAction(QStringLiteral("share"), QStringLiteral("square.and.arrow.up"),
                                    QStringLiteral("Share"), QStringLiteral("Share"));
    share.setFiresOnPress(true);
    share.onAction = [this, onShare = std::move(actions.onShare), &share] {
        commands();
        onShare(share);
    };
    EditorButton& save = addAction(QStringLiteral("save"), QStringLiteral("square.and.arrow.down"),
                                   QStringLiteral("Save"), QStringLiteral("Save (⌘S)"));
    save.onAction = [this] {
        commands();
        editor.output.saveSelection();
    };
    EditorButton& copy = addAction(QStringLiteral("copy"), QStringLiteral("doc.on.doc"),
                                   QStringLiteral("Copy"), QStringLiteral("Copy (⌘C)"));
    copy.onAction = [this] {
        commands();
        editor.output.copySelection();
    };
}

EditorButton& OverlayPanels::addAction(const QString& icon, const QString& symbol, const QString& title,
                                       const QString& toolTip) {
    auto* button = new EditorButton(actionBar);
    name(*button, icon, title);
    button->setIconImage(icon, symbol, actionIconSize);
    button->setToolTip(toolTip);
    actionBar->addArrangedSubview(*button);
    return *button;
}

void OverlayPanels::setVisible(bool visible) {
    if (sidebar->isHidden() == !visible)
        return;
    sidebar->setVisible(visible);
    actionBar->setVisible(visible);
}

void OverlayPanels::show(const OverlayDocument& document) {
    ControlState state = ControlState::of(document);
    if (shown == state)
        return;
    for (QWidget* control : sizeControls)
        control->setEnabled(state.sizeEnabled);
    sizeField->showSize(state.size);
    sizeField->setToolTip(state.sizeToolTip);
    colorWell->setEnabled(state.colorEnabled);
    colorWell->setColor(state.color);
    undoButton->setEnabled(state.undoEnabled);
    redoButton->setEnabled(state.redoEnabled);
    sidebar->update(EditorSidebar::Content{
        .annotations = document.state.annotations, .selected = state.selectedID, .tool = state.tool});
    shown = std::move(state);
}

void OverlayPanels::place(const OverlayDocument& document, double panelScale) {
    const auto rows = static_cast<double>(document.state.annotations.size());
    const EditorLayout layout(
        {.selection = document.selection,
         .bounds = document.bounds(),
         .layersHeight = std::min(std::max(rows, 1.0) * rowPitch, highestList) + headingHeight,
         .actionWidth = std::max(actionBar->preferredWidth(), leastActionWidth),
         .panelScale = panelScale});
    const ViewFlip flip{document.viewSize.height};
    sidebar->place({.tools = flip.toWidget(layout.tools),
                    .layers = flip.toWidget(layout.layers),
                    .scale = layout.scale});
    actionBar->place(flip.toWidget(layout.actions), layout.scale);
}

void OverlayPanels::closePicker() {
    colorWell->closePicker();
}

void OverlayPanels::dismissHints() {
    EditorButton::dismissHints(canvas);
}

bool OverlayPanels::isOver(QPointF position) const {
    if (actionBar->isHidden())
        return false;
    return sidebar->isOverPanel(position) || QRectF(actionBar->geometry()).contains(position);
}

bool OverlayPanels::revertTypedSize() {
    if (!sizeField->revert())
        return false;
    editor.layers.returnFocus();
    return true;
}

bool OverlayPanels::sizeFieldHasFocus() const {
    return sizeField->isEditing();
}

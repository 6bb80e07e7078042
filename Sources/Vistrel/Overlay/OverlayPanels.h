#pragma once

#include "Overlay/ControlState.h"
#include "Overlay/OverlayEditor.h"

#include <QPointF>

class CaptureColorWell;
class EditorActionBar;
class EditorButton;
class EditorSidebar;
class EditorSizeField;
class QWidget;

/// The panels around the selection: makes them, joins them to the editing rules, shows the state and
/// stands them in place. The widgets are children of the canvas. Main thread.
class OverlayPanels {
public:
    struct Actions {
        /// The Share button asks for the menu under itself.
        std::function<void(QWidget& button)> onShare;
    };

    OverlayPanels(QWidget& canvas, OverlayEditor& editor, Actions actions);

    void setVisible(bool visible);
    /// Passes on what changed since the last time.
    void show(const OverlayDocument& document);
    /// `panelScale` is the user's magnification before it is fitted to the display.
    void place(const OverlayDocument& document, double panelScale);
    void closePicker();
    /// Hover hints of all buttons disappear.
    void dismissHints();
    /// True over a panel that is shown; the canvas's points, y down.
    bool isOver(QPointF position) const;
    bool sizeFieldHasFocus() const;
    /// Puts back a size that is still being typed; false when none is.
    bool revertTypedSize();

private:
    /// For what a button asks, with a gesture or a typed size that is still under way finished first.
    LayerCommands& commands();
    void buildSizeControls();
    void buildColorWell();
    void buildHistory();
    void buildActions(Actions actions);
    EditorButton& addAction(const QString& name, const QString& symbol, const QString& title,
                            const QString& toolTip);

    QWidget& canvas;
    OverlayEditor& editor;
    EditorSidebar* sidebar;
    EditorActionBar* actionBar;
    EditorSizeField* sizeField = nullptr;
    CaptureColorWell* colorWell = nullptr;
    EditorButton* undoButton = nullptr;
    EditorButton* redoButton = nullptr;
    std::vector<QWidget*> sizeControls;
    std::optional<ControlState> shown;
};

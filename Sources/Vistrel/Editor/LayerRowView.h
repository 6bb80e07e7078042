#pragma once

#include "Editor/LayerListRules.h"

#include <QWidget>

class EditorHint;
class LayerIcon;
class LayerLabel;
class LayerTableView;
class LayerTrashButton;

/// One row in sight: icon (the handle to drag), label and trash button. Shows one layer after another
/// while the list scrolls.
class LayerRowView : public QWidget {
    Q_OBJECT
public:
    LayerRowView(LayerTableView& table, QWidget* viewport);

    /// Shows a layer; repaints only what is new.
    void show(const LayerRow& row, int index);
    using QWidget::show;
    /// Hides the row and forgets its layer: what was typed must not outlive it.
    void clear();
    void setMagnification(double scale);

    const LayerRow& row() const { return content; }
    int index() const { return position; }
    bool isChosen() const;
    void choose();
    void remove();
    /// Marks the row that the keyboard acts on.
    void setFocusRing(bool shown);

    LayerIcon& icon() const { return *iconView; }
    LayerLabel& label() const { return *labelView; }
    LayerTrashButton& trash() const { return *trashButton; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void layoutParts();

    LayerTableView& table;
    LayerIcon* iconView;
    LayerLabel* labelView;
    LayerTrashButton* trashButton;
    LayerRow content;
    int position = -1;
    double scale = 1;
    bool ring = false;
    bool shownBefore = false;
};

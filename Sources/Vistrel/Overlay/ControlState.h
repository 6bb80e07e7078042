#pragma once

#include "Editor/LayerListRules.h"
#include "Overlay/OverlayDocument.h"

/// What the panels show: a value to compare, so that only what changed is passed on to the controls.
struct ControlState {
    bool sizeEnabled = false;
    int size = 0;
    QString sizeToolTip;
    bool colorEnabled = false;
    QColor color;
    bool undoEnabled = false;
    bool redoEnabled = false;
    AnnotationTool tool = AnnotationTool::select;
    std::optional<QUuid> selectedID;
    /// Oldest first.
    std::vector<LayerRow> rows;

    friend bool operator==(const ControlState&, const ControlState&) = default;

    static ControlState of(const OverlayDocument& document);
};

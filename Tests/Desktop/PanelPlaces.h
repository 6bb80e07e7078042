#pragma once

#include "VistrelCore/EditorLayout.h"

#include <QRectF>

#include <vector>

/// A control of the editor's panels as its user sees it.
struct PanelControl {
    enum Kind {
        tool,
        undo,
        redo,
        color,
        sizeField,
        smaller,
        larger,
        record,
        share,
        save,
        copy,
        heading,
        rowIcon,
        rowLabel,
        rowTrash
    };

    Kind kind = tool;
    /// The tool's number in the journal, or the row counted from the top of the list before it was scrolled.
    int index = 0;
    /// Points of the display, y down.
    QRectF area;
};

/// Where the panels and their controls stand around a selection, with the user's panel size at 100 %.
class PanelPlaces {
public:
    /// `selection` in view points (y up), `display` the display's size in points.
    PanelPlaces(const Rect& selection, Size display, int layers);

    const std::vector<PanelControl>& controls() const { return all; }
    /// Of a control that is there.
    QPointF center(PanelControl::Kind kind, int index = 0) const;
    /// The three panels' rectangles; points of the display, y down.
    const std::vector<QRectF>& panels() const { return frames; }

private:
    void addTools(const QRectF& panel);
    void addActions(const QRectF& panel);
    void addRows(const QRectF& panel, int layers);

    double scale = 1;
    std::vector<QRectF> frames;
    std::vector<PanelControl> all;
};

#pragma once

#include "Desktop/PanelPlaces.h"
#include "Desktop/VistrelOnDesktop.h"

/// The editor of one display as its user sees it: where every control stands on the screen, and what the
/// journal says of each step. The display's picture has no two equal neighbours.
class EditorOnDesktop : public VistrelOnDesktop {
public:
    /// In the order of the journal's numbers.
    enum Tool { selectTool, pen, arrow, rectangle, marker, line, ellipse, blur, pixelate, text };
    enum Action { record, share, save, copyAction };

    explicit EditorOnDesktop(const DesktopSession::Options& options = plainDesktop());

    /// Starts the program, captures and drags out `area`.
    [[nodiscard]] bool edit(QRect area);

    QPoint toolButton(Tool tool) const { return center(PanelControl::tool, tool); }
    QPoint undoButton() const { return center(PanelControl::undo); }
    QPoint redoButton() const { return center(PanelControl::redo); }
    QPoint colorWell() const { return center(PanelControl::color); }
    QPoint sizeField() const { return center(PanelControl::sizeField); }
    QPoint plusButton() const { return center(PanelControl::larger); }
    QPoint minusButton() const { return center(PanelControl::smaller); }
    QPoint actionButton(Action action) const {
        return center(PanelControl::Kind(PanelControl::record + int(action)));
    }
    /// Parts of a row in sight, counted from the top of the list before it was scrolled.
    QPoint rowIcon(int row) const { return center(PanelControl::rowIcon, row); }
    QPoint rowLabel(int row) const { return center(PanelControl::rowLabel, row); }
    QPoint rowTrash(int row) const { return center(PanelControl::rowTrash, row); }

    void click(QPoint position) { session.input().click(position); }
    void drag(QPoint from, QPoint to) { session.input().drag(from, to); }

    /// Waits for the next `count` steps in the journal; each as "action(tool,size,layers)".
    std::string steps(int count = 1);
    QImage settledSelection() { return settled(selection); }

    QImage desktop;
    QRect selection;
    /// Kept by the test: the list grows with it.
    int layers = 0;

private:
    QPoint center(PanelControl::Kind kind, int index = 0) const;

    qsizetype read = 0;
};

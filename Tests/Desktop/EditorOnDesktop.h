#pragma once

#include "Desktop/VistrelOnDesktop.h"
#include "VistrelCore/EditorLayout.h"

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

    QPoint toolButton(Tool tool) const;
    QPoint undoButton() const { return cell(6, 0); }
    QPoint redoButton() const { return cell(6, 1); }
    QPoint colorWell() const { return cell(5, 1); }
    QPoint sizeField() const;
    QPoint plusButton() const { return 2 * sizeField() - minusButton(); }
    QPoint minusButton() const;
    QPoint actionButton(Action action) const;
    /// Parts of a row in sight, counted from the top of the list before it was scrolled.
    QPoint rowIcon(int row) const { return rowPoint(row, 14); }
    QPoint rowLabel(int row) const { return rowPoint(row, 60); }
    QPoint rowTrash(int row) const;

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
    EditorLayout layout() const;
    QRectF onScreen(const Rect& rect) const;
    QPoint cell(int row, int column) const;
    QPoint rowPoint(int row, double designX) const;

    qsizetype read = 0;
};

#pragma once

#include "Editor/EditorButton.h"

/// The minus or plus beside the size field. Acts once on the press itself.
class EditorStepButton : public EditorButton {
    Q_OBJECT
public:
    explicit EditorStepButton(bool increasing, QWidget* parent = nullptr);

    bool isIncreasing() const { return increasing; }
    /// Length of the glyph's bars in a button of this size; nothing is drawn when not positive.
    static double glyphLength(QSizeF size);

protected:
    void paintContent(QPainter& painter) override;

private:
    bool increasing;
};

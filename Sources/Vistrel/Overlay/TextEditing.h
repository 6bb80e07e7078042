#pragma once

#include "VistrelCore/Geometry.h"

#include <QColor>
#include <QString>

/// What a text editor on the canvas starts with. View points, y up.
struct TextEditorSetup {
    QString text;
    double fontSize = 0;
    QColor color;
    /// The top-left corner of the box; the box grows to the right and downwards.
    Point anchor;
    Size availableSize;
};

/// The open text editor as the editing rules see it. It is on the canvas for as long as the object lives.
class TextEditing {
public:
    TextEditing() = default;
    TextEditing(const TextEditing&) = delete;
    TextEditing& operator=(const TextEditing&) = delete;
    virtual ~TextEditing() = default;

    /// The text exactly as typed, including what an input method was composing.
    virtual QString text() = 0;
    virtual double fontSize() const = 0;
    /// The box refits itself.
    virtual void setFontSize(double size) = 0;
    virtual void setColor(const QColor& color) = 0;
    /// The box around the text, fitted to it.
    virtual Rect fittedFrame() = 0;
    virtual void focus() = 0;
    virtual bool hasFocus() const = 0;
};

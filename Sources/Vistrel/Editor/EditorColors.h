#pragma once

#include <QColor>
#include <QPalette>

/// The fixed colours of the editor panels: light, whatever the desktop's palette. Main thread.
namespace EditorColors {

/// Fill of every panel.
const QColor& background();
/// Icons and text.
const QColor& ink();
/// Text of hint bubbles.
const QColor& hintInk();
/// The desktop's accent colour.
QColor accent();
/// A light palette made of the colours above, for the controls inside the panels.
QPalette palette();

} // namespace EditorColors

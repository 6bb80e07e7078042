#pragma once

#include <QFont>

/// The system font at sizes in widget points. Fractions are kept, so that text magnifies evenly.
namespace EditorFont {

QFont system(double points, QFont::Weight weight = QFont::Normal);

} // namespace EditorFont

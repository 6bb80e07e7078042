#pragma once

#include "Annotations/EditorAnnotation.h"

#include <QFont>

class QPainter;
class QTextLayout;

/// Measures and paints text layers; the text editor uses the same rules, so what is exported wraps as it
/// was typed. One unit of a font's size is one view point, fractions kept. A QFont knows whole pixels
/// only, so lines are laid out in the nearest whole size and shown scaled.
namespace AnnotationTextLayout {

/// The system font in the whole size nearest to `size`, not hinted, so that it scales evenly.
QFont font(double size);
/// What lines laid out in `font(size)` are scaled by to have exactly that size.
double scale(double size);
/// Breaks one paragraph (a text without line feeds) into lines of this width, one below the other from
/// y = 0, and returns their height. Both are in units of the paragraph's own font.
double layOut(QTextLayout& paragraph, double width);

/// The box needed to show `text`, in points, limited by the available size.
Size size(const QString& text, double fontSize, Size available);

/// Paints one text layer: the lines that fit into its box, the first one always. The painter's
/// coordinates are view points, y up.
void draw(const EditorAnnotation& annotation, QPainter& painter);

} // namespace AnnotationTextLayout

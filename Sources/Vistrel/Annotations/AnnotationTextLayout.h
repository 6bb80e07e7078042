#pragma once

#include "Annotations/EditorAnnotation.h"

#include <QFont>

class QPainter;

/// Measures and paints text layers; the text editor uses the same rules, so what is exported wraps as
/// it was typed. Points; one unit of a font's size is one point of the view.
namespace AnnotationTextLayout {

/// The system font at a size in points (fractions kept), not hinted, so that it scales evenly.
QFont font(double size);

/// The box needed to show `text`, limited by the available size.
Size size(const QString& text, const QFont& font, Size available);

/// Paints one text layer. The painter's coordinates are view points, y up.
void draw(const EditorAnnotation& annotation, QPainter& painter);

} // namespace AnnotationTextLayout

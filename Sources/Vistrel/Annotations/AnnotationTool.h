#pragma once

#include <QString>

#include <array>

/// The ten tools; the numbers are stored in journals and never change.
enum class AnnotationTool {
    select = 0,
    pen = 1,
    arrow = 2,
    rectangle = 3,
    marker = 4,
    line = 5,
    ellipse = 6,
    blur = 7,
    pixelate = 8,
    text = 9,
};

namespace AnnotationTools {

inline constexpr int count = 10;

/// The order of the tool buttons.
inline constexpr std::array<AnnotationTool, count> displayOrder = {
    AnnotationTool::select,    AnnotationTool::pen,     AnnotationTool::line,   AnnotationTool::arrow,
    AnnotationTool::rectangle, AnnotationTool::ellipse, AnnotationTool::marker, AnnotationTool::blur,
    AnnotationTool::pixelate,  AnnotationTool::text,
};

/// What the user reads on buttons and layer rows.
QString title(AnnotationTool tool);
/// The name of the tool's icon file, the case's own name ("pen").
QString name(AnnotationTool tool);
/// The system symbol that stands in for the icon.
QString symbol(AnnotationTool tool);
/// The key that chooses the tool, lower case.
QChar key(AnnotationTool tool);
/// Whole image pixels, 1 to 99.
int defaultSize(AnnotationTool tool);
/// The points are a polyline that grows with the drag (pen, marker, blur).
bool isFreehand(AnnotationTool tool);
/// The layer alters the pixels below instead of painting over them (blur, pixelate).
bool isEffect(AnnotationTool tool);

} // namespace AnnotationTools

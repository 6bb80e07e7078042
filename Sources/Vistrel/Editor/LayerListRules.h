#pragma once

#include "Annotations/EditorAnnotation.h"

#include <span>
#include <vector>

/// What one row of the layer list shows.
struct LayerRow {
    QUuid id;
    AnnotationTool tool = AnnotationTool::pen;
    QString text;

    friend bool operator==(const LayerRow&, const LayerRow&) = default;
};

/// The rules of the layer list; no window. Rows are newest first, annotations oldest first.
namespace LayerListRules {

/// The rows of a document.
std::vector<LayerRow> rows(std::span<const EditorAnnotation> annotations);
/// True when `rows` no longer show `annotations`.
bool differ(std::span<const LayerRow> rows, std::span<const EditorAnnotation> annotations);
/// What the user reads on a row.
QString label(const LayerRow& row);

/// Where a layer dropped at `y` goes: the row before which it would stand. `y` counts downwards from
/// the top of the first row, `pitch` from row to row.
int insertion(double y, double pitch, int rowCount);
/// The new index in the annotation list of the layer in row `from`; nothing when it would not move.
std::optional<int> annotationIndex(int from, int insertion, int rowCount);
/// How far to scroll per step while the pointer is at `y` of a list of this height; 0 inside.
double autoScroll(double y, double height);

} // namespace LayerListRules

#pragma once

#include "Annotations/AnnotationTool.h"
#include "VistrelCore/Geometry.h"

#include <QColor>
#include <QPainterPath>
#include <QString>
#include <QUuid>

#include <optional>
#include <vector>

/// One annotation layer: a value in view points, y up.
struct EditorAnnotation {
    QUuid id = {};
    AnnotationTool tool = AnnotationTool::pen;
    /// Stroke width in points; for text the font's size in points.
    double width = 1;
    /// The size the user chose, in image pixels (1 to 99); absent for layers that never had one.
    std::optional<int> size = std::nullopt;
    QColor color = {};
    /// Freehand tools: the polyline. Line and arrow: start, end. Others: two opposite corners.
    std::vector<Point> points = {};
    /// A text layer's text exactly as typed; empty for other tools.
    QString text = {};

    friend bool operator==(const EditorAnnotation&, const EditorAnnotation&) = default;

    /// The smallest rectangle around all points; zero without points.
    Rect geometryBounds() const;
    /// The frame shown around the selected layer: the geometry and half the stroke on every side.
    Rect bounds() const;
    /// Everything the layer may paint on, with arrow barbs and letters that hang over. For repaints.
    Rect paintedBounds() const;
    /// Nothing but a place, which a path leaves out. (An arrow's barbs have a length of their own.)
    bool isDot() const;
    /// The line to stroke and to hit-test, arrow heads included.
    QPainterPath path() const;
    EditorAnnotation movedBy(Point offset) const;
    EditorAnnotation resizedTo(const Rect& target) const;
};

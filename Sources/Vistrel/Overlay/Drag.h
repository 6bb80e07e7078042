#pragma once

#include "Annotations/EditorState.h"

#include <variant>

/// A new selection in the making, and what it must bring back when it stays a mere click.
struct Creation {
    Point start;
    Rect selection;
    EditorState state;
    AnnotationTool tool = AnnotationTool::select;
    bool valid = false;
};

struct MoveSelection {
    Point start;
    Rect original;
};

/// `handle` is 0 to 7, counter-clockwise from the bottom-left corner.
struct ResizeSelection {
    int handle = 0;
    Rect original;
};

struct MoveAnnotation {
    Point start;
    EditorAnnotation original;
};

/// `handle` is 0 to 3, counter-clockwise from the bottom-left corner.
struct ResizeAnnotation {
    int handle = 0;
    EditorAnnotation original;
};

/// One end of a line or an arrow.
struct DragEndpoint {
    std::size_t index = 0;
    EditorAnnotation original;
};

/// A new layer being drawn.
struct Annotate {
    QUuid id;
};

/// The gesture in progress: what the press began and what it began with.
using Drag = std::variant<Creation, MoveSelection, ResizeSelection, MoveAnnotation, ResizeAnnotation,
                          DragEndpoint, Annotate>;

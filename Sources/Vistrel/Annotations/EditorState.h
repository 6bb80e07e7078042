#pragma once

#include "Annotations/EditorAnnotation.h"

/// The document: layers from bottom to top, and the selected one.
struct EditorState {
    std::vector<EditorAnnotation> annotations = {};
    std::optional<QUuid> selectedID = std::nullopt;

    friend bool operator==(const EditorState&, const EditorState&) = default;

    /// The layer with this id; null when there is none.
    const EditorAnnotation* find(const QUuid& id) const;
    /// The selected layer; null when nothing is selected.
    const EditorAnnotation* selected() const;
};

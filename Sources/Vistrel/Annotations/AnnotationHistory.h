#pragma once

#include "Annotations/EditorState.h"

/// Undo and redo, at most 100 steps. Plain values, oldest first.
struct AnnotationHistory {
    static constexpr std::size_t limit = 100;

    std::vector<EditorState> past;
    std::vector<EditorState> future;

    /// Called when a change has ended. Nothing happens when the layers are the same before and after.
    void record(const EditorState& before, const EditorState& after);
    /// The state to show in place of `current`; nothing when there is nothing to undo.
    std::optional<EditorState> undo(const EditorState& current);
    std::optional<EditorState> redo(const EditorState& current);
    void clear();
};

#include "Annotations/AnnotationHistory.h"

namespace {

std::optional<EditorState> moveState(std::vector<EditorState>& from, std::vector<EditorState>& to,
                                     const EditorState& current) {
    if (from.empty())
        return std::nullopt;
    EditorState shown = std::move(from.back());
    from.pop_back();
    to.push_back(current);
    return shown;
}

} // namespace

void AnnotationHistory::record(const EditorState& before, const EditorState& after) {
    if (before.annotations == after.annotations)
        return;
    if (past.size() >= limit)
        past.erase(past.begin());
    past.push_back(before);
    future.clear();
}

std::optional<EditorState> AnnotationHistory::undo(const EditorState& current) {
    return moveState(past, future, current);
}

std::optional<EditorState> AnnotationHistory::redo(const EditorState& current) {
    return moveState(future, past, current);
}

void AnnotationHistory::clear() {
    past.clear();
    future.clear();
}

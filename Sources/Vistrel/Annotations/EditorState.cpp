#include "Annotations/EditorState.h"

const EditorAnnotation* EditorState::find(const QUuid& id) const {
    const auto found =
        std::find_if(annotations.begin(), annotations.end(),
                     [&id](const EditorAnnotation& annotation) { return annotation.id == id; });
    return found == annotations.end() ? nullptr : &*found;
}

const EditorAnnotation* EditorState::selected() const {
    return selectedID ? find(*selectedID) : nullptr;
}

#pragma once

#include "Overlay/OverlaySession.h"

/// Typing into a text layer: begin, commit, cancel. Owns the open editor; a press, a tool or a command
/// elsewhere commits it.
class TextCommands {
public:
    explicit TextCommands(OverlaySession& session);

    bool isEditing() const { return editor != nullptr; }
    TextEditing* openEditor() const { return editor.get(); }

    /// A new text at the pressed point, or the existing text layer.
    void begin(Point at, const EditorAnnotation* existing);
    void commit();
    /// Reports, discards, and gives the canvas the keyboard back.
    void cancel();
    /// Closes the editor; the layers stay as they are.
    void discard();

    void setSize(int size);
    void setColor(const QColor& color);

private:
    void storeLayer(const QString& text);
    void removeEditedLayer();
    void editedLayerChanged();

    OverlaySession& session;
    std::unique_ptr<TextEditing> editor;
};

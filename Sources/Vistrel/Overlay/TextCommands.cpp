#include "Overlay/TextCommands.h"

using Diagnostic::Action;

TextCommands::TextCommands(OverlaySession& overlaySession) : session(overlaySession) {}

void TextCommands::begin(Point at, const EditorAnnotation* existing) {
    OverlayDocument& document = session.document;
    session.report(Action::textEditingStarted, AnnotationTool::text);
    const Rect& selection = document.selection;

    TextEditorSetup setup;
    OverlayDocument::TextSession text;
    text.before = document.state;
    if (existing) {
        const Rect box = existing->geometryBounds();
        text.layerID = existing->id;
        text.size = document.sizeOf(*existing);
        text.color = existing->color;
        setup.text = existing->text;
        setup.fontSize = existing->width;
        setup.anchor = {box.minX(), box.maxY()};
    } else {
        text.size = document.drawingSize();
        text.color = document.drawingColor();
        setup.fontSize = document.widthForSize(text.size);
        // The first line is centred on the press.
        setup.anchor = {at.x, std::min(at.y + setup.fontSize * 0.5, selection.maxY())};
    }
    setup.color = text.color;
    setup.availableSize = {selection.maxX() - setup.anchor.x, setup.anchor.y - selection.minY()};
    document.text = std::move(text);
    editor = session.hooks.openTextEditor(setup);
    editedLayerChanged();
    editor->focus();
}

void TextCommands::commit() {
    if (!editor)
        return;
    const QString text = editor->text();
    const EditorState before = session.document.text->before;
    if (text.trimmed().isEmpty())
        removeEditedLayer();
    else
        storeLayer(text);
    session.report(Action::textCommitted, AnnotationTool::text);
    discard();
    session.document.history.record(before, session.document.state);
    session.layersChanged(before.annotations);
    session.hooks.focusCanvas();
    session.hooks.onChange();
}

void TextCommands::storeLayer(const QString& text) {
    OverlayDocument& document = session.document;
    const Rect box = editor->fittedFrame();
    const EditorAnnotation layer{.id = document.text->layerID.value_or(QUuid::createUuid()),
                                 .tool = AnnotationTool::text,
                                 .width = editor->fontSize(),
                                 .size = document.text->size,
                                 .color = document.text->color,
                                 .points = {{box.minX(), box.minY()}, {box.maxX(), box.maxY()}},
                                 .text = text};
    if (document.text->layerID)
        session.replaceLayer(layer);
    else
        document.state.annotations.push_back(layer);
    document.state.selectedID = layer.id;
}

void TextCommands::removeEditedLayer() {
    OverlayDocument& document = session.document;
    if (!document.text->layerID)
        return;
    const QUuid id = *document.text->layerID;
    std::erase_if(document.state.annotations, [&](const auto& layer) { return layer.id == id; });
    if (document.state.selectedID == id)
        document.state.selectedID.reset();
}

void TextCommands::cancel() {
    session.report(Action::textCancelled, AnnotationTool::text);
    discard();
    session.hooks.focusCanvas();
    session.hooks.onChange();
}

void TextCommands::discard() {
    if (!editor)
        return;
    editedLayerChanged();
    session.document.text.reset();
    editor.reset();
}

void TextCommands::setSize(int size) {
    session.document.text->size = size;
    editor->setFontSize(session.document.widthForSize(size));
}

void TextCommands::setColor(const QColor& color) {
    session.document.text->color = color;
    editor->setColor(color);
}

// The edited layer leaves the canvas while its editor is open, and comes back afterwards.
void TextCommands::editedLayerChanged() {
    const auto& layers = session.document.state.annotations;
    const std::optional<QUuid>& id = session.document.text->layerID;
    for (std::size_t index = 0; id && index < layers.size(); ++index) {
        if (layers[index].id == *id)
            session.layerChanged(index, layers[index].paintedBounds());
    }
}

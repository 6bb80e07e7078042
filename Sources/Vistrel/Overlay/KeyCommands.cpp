#include "Overlay/KeyCommands.h"

namespace {

constexpr ModifierMask commandKeys = Modifier::command | Modifier::control;

bool isPlain(const KeyEvent& event) {
    return (event.modifiers & (commandKeys | Modifier::option)) == 0;
}

} // namespace

KeyCommands::KeyCommands(OverlaySession& overlaySession, TextCommands& textCommands,
                         LayerCommands& layerCommands, OutputCommands& outputCommands)
    : session(overlaySession), text(textCommands), layers(layerCommands), output(outputCommands) {}

bool KeyCommands::keyDown(const KeyEvent& event, const KeyFocus& focus) {
    if (event.keyCode == Key::escape) {
        // A key held too long must not end the capture after it has cancelled a text.
        if (!event.isRepeat)
            cancelOperation();
        return true;
    }
    if (keyEquivalent(event, focus))
        return true;
    // Keys that an editor or a field has no use for are not meant for the canvas.
    if (focus.textEditor || focus.sizeField || !isPlain(event))
        return false;
    return deleteKey(event) || arrowKey(event) || toolKey(event);
}

bool KeyCommands::keyEquivalent(const KeyEvent& event, const KeyFocus& focus) {
    if (text.isEditing() && focus.textEditor)
        return false;
    return sizeKey(event, focus) || commandKey(event, focus);
}

void KeyCommands::cancelOperation() {
    if (text.isEditing())
        text.cancel();
    else
        session.hooks.onClose();
}

bool KeyCommands::sizeKey(const KeyEvent& event, const KeyFocus& focus) {
    const OverlayDocument& document = session.document;
    const bool hasTarget = document.tool != AnnotationTool::select || document.state.selected();
    if (!hasTarget || focus.sizeField || !isPlain(event))
        return false;
    const QString& typed = event.characters;
    int step = 0;
    if (typed == QLatin1StringView("+") || typed == QLatin1StringView("="))
        step = 1;
    else if (typed == QLatin1StringView("-") || typed == QStringLiteral("−"))
        step = -1;
    else
        return false;
    layers.setDrawingSize(document.drawingSize() + step);
    return true;
}

bool KeyCommands::commandKey(const KeyEvent& event, const KeyFocus& focus) {
    if ((event.modifiers & commandKeys) == 0)
        return false;
    const QString typed = event.characters.toLower();
    const bool isOutput = typed == QLatin1StringView("c") || typed == QLatin1StringView("s");
    if (isOutput && event.isRepeat)
        return true;
    // The field loses the keyboard, which takes over the number in it.
    if (isOutput && focus.sizeField)
        layers.returnFocus();
    if (typed == QLatin1StringView("c"))
        output.copySelection();
    else if (typed == QLatin1StringView("s"))
        output.saveSelection();
    else if (typed == QLatin1StringView("z"))
        event.modifiers& Modifier::shift ? layers.redo() : layers.undo();
    else if (typed == QLatin1StringView("a"))
        layers.selectAll();
    else
        return false;
    return true;
}

bool KeyCommands::deleteKey(const KeyEvent& event) {
    const EditorAnnotation* layer = session.document.state.selected();
    if (!layer || (event.keyCode != Key::deleteKey && event.keyCode != Key::forwardDelete))
        return false;
    layers.deleteAnnotation(QUuid(layer->id));
    return true;
}

bool KeyCommands::arrowKey(const KeyEvent& event) {
    if (session.document.selection.width <= 0)
        return false;
    const double step = event.modifiers & Modifier::shift ? 10 : 1;
    Point offset;
    switch (event.keyCode) {
    case Key::leftArrow:
        offset.x = -step;
        break;
    case Key::rightArrow:
        offset.x = step;
        break;
    case Key::downArrow:
        offset.y = -step;
        break;
    case Key::upArrow:
        offset.y = step;
        break;
    default:
        return false;
    }
    layers.nudge(offset);
    return true;
}

bool KeyCommands::toolKey(const KeyEvent& event) {
    const QString typed = event.characters.toLower();
    for (const AnnotationTool tool : AnnotationTools::displayOrder) {
        if (typed == AnnotationTools::key(tool)) {
            layers.selectTool(tool);
            return true;
        }
    }
    return false;
}

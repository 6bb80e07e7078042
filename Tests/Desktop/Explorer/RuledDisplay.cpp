#include "Desktop/Explorer/RuledDisplay.h"

#include "Editor/AnnotationTextView.h"
#include "Editor/EditorSizeField.h"
#include "Overlay/CanvasTextEditor.h"
#include "Overlay/ControlState.h"
#include "Overlay/KeyEventTranslation.h"

#include <QApplication>
#include <QPainter>

namespace {

/// The canvas's own editor on paper that is never shown; who has the keyboard is the display's to say.
class RuledText final : public TextEditing {
public:
    RuledText(RuledDisplay& owner, const TextEditorSetup& setup)
        : display(owner), inner(owner.paper, ViewFlip{owner.size().height}, setup) {
        display.textView = display.paper.findChildren<AnnotationTextView*>().last();
        inner.setCallbacks([this] { display.editor.text.commit(); },
                           [this] { display.editor.text.cancel(); });
    }
    ~RuledText() override {
        display.textView = nullptr;
        display.textHasFocus = false;
    }

    QString text() override { return inner.text(); }
    double fontSize() const override { return inner.fontSize(); }
    void setFontSize(double size) override { inner.setFontSize(size); }
    void setColor(const QColor& color) override { inner.setColor(color); }
    Rect fittedFrame() override { return inner.fittedFrame(); }
    void focus() override {
        display.leaveField();
        display.textHasFocus = true;
    }
    bool hasFocus() const override { return display.textHasFocus; }

private:
    RuledDisplay& display;
    CanvasTextEditor inner;
};

} // namespace

RuledDisplay::RuledDisplay(QRect displayRect, double displayScale) : rect(displayRect), scale(displayScale) {
    field.setMaxLength(12);
    OverlayHooks& hooks = editor.session.hooks;
    hooks.onChange = [this] { showSize(); };
    hooks.focusCanvas = [this] {
        leaveField();
        textHasFocus = false;
    };
    hooks.closeColorPicker = [] {};
    hooks.doubleClickOutsideToCancel = [] { return true; };
    hooks.openTextEditor = [this](const TextEditorSetup& setup) {
        return std::make_unique<RuledText>(*this, setup);
    };
}

void RuledDisplay::reset(const QImage& picture) {
    editor.text.discard();
    document().reset(picture, scale, size());
    editor.session.renderer.clearPatches();
    editor.session.damage.take();
    fieldHasFocus = false;
    textHasFocus = false;
    showSize();
}

bool RuledDisplay::showsPanels() const {
    const OverlayDocument& d = document();
    return d.hasImage() && d.selection.width >= 1 && d.selection.height >= 1 && !d.isCreatingSelection();
}

PanelPlaces RuledDisplay::places() const {
    return {document().selection, size(), int(document().state.annotations.size())};
}

bool RuledDisplay::isEnabled(const PanelControl& control) const {
    const ControlState state = ControlState::of(document());
    switch (control.kind) {
    case PanelControl::undo:
        return state.undoEnabled;
    case PanelControl::redo:
        return state.redoEnabled;
    case PanelControl::color:
        return state.colorEnabled;
    case PanelControl::sizeField:
    case PanelControl::smaller:
    case PanelControl::larger:
        return state.sizeEnabled;
    case PanelControl::record:
    case PanelControl::heading:
        return false;
    default:
        return true;
    }
}

QUuid RuledDisplay::layerInRow(int row) const {
    const auto& layers = document().state.annotations;
    return row < int(layers.size()) ? layers[layers.size() - 1 - std::size_t(row)].id : QUuid();
}

QRect RuledDisplay::toRoot(const QRectF& points) const {
    return QRectF(points.topLeft() * scale, points.size() * scale).toAlignedRect().translated(rect.topLeft());
}

Point RuledDisplay::viewPoint(QPoint onRoot) const {
    return ViewFlip{size().height}.toView(toPoints(onRoot));
}

QRectF RuledDisplay::textArea() const {
    return textView ? QRectF(textView->geometry()) : QRectF();
}

// In the program's order: the window's own keys, then the control that has the keyboard.
void RuledDisplay::key(QKeyEvent& event) {
    const KeyEvent key = keyEventFrom(event);
    const KeyFocus focus{.textEditor = textHasFocus, .sizeField = fieldHasFocus};
    if (event.key() == Qt::Key_Escape) {
        if (fieldHasFocus && isFieldPending())
            return field.setText(shownSize);
        return editor.keys.cancelOperation();
    }
    if ((key.modifiers & (Modifier::command | Modifier::control)) && editor.keys.keyEquivalent(key, focus))
        return;
    if (textHasFocus)
        QApplication::sendEvent(textView, &event);
    else if (!fieldHasFocus)
        editor.keys.keyDown(key, focus);
    else if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)
        commitField();
    else
        QApplication::sendEvent(&field, &event);
}

void RuledDisplay::beginField() {
    fieldHasFocus = true;
    textHasFocus = false;
    field.selectAll();
}

void RuledDisplay::leaveField() {
    if (!std::exchange(fieldHasFocus, false))
        return;
    field.deselect();
    if (isFieldPending())
        commitField();
}

void RuledDisplay::commitField() {
    const bool endsHere = fieldHasFocus;
    field.setModified(false);
    shownSize = field.text();
    editor.layers.commitSize(EditorSizeField::number(field.text()));
    showSize();
    if (endsHere)
        editor.layers.returnFocus();
}

void RuledDisplay::showSize() {
    if (fieldHasFocus && isFieldPending())
        return;
    shownSize = QString::number(document().drawingSize());
    if (field.text() != shownSize)
        field.setText(shownSize);
}

QImage RuledDisplay::picture() {
    const CanvasSpace space{size(), document().image.size()};
    const DecorationLayout layout = DecorationLayout::of(document(), space, badgeText);
    QImage result(rect.size(), QImage::Format_RGB32);
    QPainter painter(&result);
    const QRegion everything(result.rect());
    CanvasPainter canvas(painter, everything);
    const CanvasPainter::Picture shown{.presentation = document().image, .space = space, .layout = layout};
    canvas.paintPicture(shown);
    canvas.paintLayers(document(), editor.session.renderer, shown);
    canvas.paintDecorations(shown, badgeText, QApplication::palette().color(QPalette::Highlight));
    return result;
}

std::vector<QRect> RuledDisplay::letters() const {
    const CanvasSpace space{size(), document().image.size()};
    const DecorationLayout layout = DecorationLayout::of(document(), space, badgeText);
    std::vector<QRect> result;
    if (layout.badge)
        result.push_back(layout.badge->frame.adjusted(-8, -2, 8, 2));
    for (const EditorAnnotation& layer : document().state.annotations)
        if (layer.tool == AnnotationTool::text)
            result.push_back(space.pixelsOf(layer.paintedBounds().insetBy(-2)));
    return result;
}

#include "Desktop/Explorer/Rules.h"

#include "Diagnostics/DiagnosticRecord.h"
#include "Editor/AnnotationTextView.h"
#include "Editor/LayerListRules.h"

#include <QApplication>
#include <QMouseEvent>

using Diagnostic::Action;

void Rules::addDisplay(QRect rect, double scale) {
    displays.push_back(std::make_unique<RuledDisplay>(rect, scale));
    wire(displays.size() - 1);
}

void Rules::wire(std::size_t index) {
    OverlayHooks& hooks = displays[index]->editor.session.hooks;
    hooks.onDiagnosticEvent = [this, index](Action action, const Diagnostic::Details& details) {
        record(index, action, details);
    };
    hooks.onClose = [this] { close(); };
    hooks.onSelection = [this, index] { selectionStarted(index); };
    hooks.onCopy = [this](const QImage& image) {
        journal << QStringLiteral("copyRequested") << QStringLiteral("copySucceeded");
        copied = image;
        close();
    };
    hooks.onSave = [this](const QImage& image) {
        journal << QStringLiteral("saveRequested");
        saved = image;
        dialog = Dialog::save;
    };
}

void Rules::record(std::size_t index, Action action, const Diagnostic::Details& details) {
    journal << QStringLiteral("%1(%2,%3,%4,%5)")
                   .arg(Diagnostic::name(action))
                   .arg(details.tool.value_or(-1))
                   .arg(details.size.value_or(-1))
                   .arg(details.layers.value_or(-1))
                   .arg(index);
}

void Rules::selectionStarted(std::size_t index) {
    for (std::size_t other = 0; other < displays.size(); ++other) {
        RuledDisplay& left = *displays[other];
        if (other == index || left.document().selection.width <= 0)
            continue;
        left.editor.session.report(Action::selectionCleared, left.document().tool);
        left.editor.text.discard();
        left.document().clearEditing();
        left.editor.session.renderer.clearPatches();
        left.fieldHasFocus = false;
        left.editor.session.hooks.onChange();
    }
    keyboard = index;
}

void Rules::begin(const QImage& screen) {
    for (const auto& display : displays)
        display->reset(screen.copy(display->rect));
    open = true;
    keyboard = displayAt(pointer);
    copied.reset();
    dialog = Dialog::none;
    journal << QStringLiteral("captureRequested") << QStringLiteral("captureReady");
}

void Rules::close() {
    open = false;
    for (const auto& display : displays)
        display->reset({});
    journal << QStringLiteral("captureClosed");
}

std::size_t Rules::displayAt(QPoint position) const {
    for (std::size_t index = 0; index < displays.size(); ++index)
        if (displays[index]->rect.contains(position))
            return index;
    return 0;
}

Rules::Receiver Rules::at(QPoint position) const {
    const std::size_t index = displayAt(position);
    const RuledDisplay& on = *displays[index];
    const QPointF p = on.toPoints(position);
    if (on.textArea().contains(p))
        return {.display = index, .part = Receiver::text, .shown = {}, .layer = {}};
    if (!on.showsPanels())
        return {.display = index, .shown = {}, .layer = {}};
    const PanelPlaces places = on.places();
    for (const PanelControl& control : places.controls())
        if (control.area.contains(p))
            return {.display = index,
                    .part = Receiver::control,
                    .shown = control,
                    .layer = control.kind >= PanelControl::rowIcon ? on.layerInRow(control.index) : QUuid()};
    for (const QRectF& panel : places.panels())
        if (panel.contains(p))
            return {.display = index, .part = Receiver::panel, .shown = {}, .layer = {}};
    return {.display = index, .shown = {}, .layer = {}};
}

void Rules::movePointer(QPoint to) {
    pointer = to;
    if (!isPressed(1))
        return;
    RuledDisplay& on = *displays[receiver.display];
    if (receiver.part == Receiver::canvas)
        on.editor.gestures.drag(on.viewPoint(to));
    else if (receiver.part == Receiver::text)
        sendToText(QEvent::MouseMove);
    else if (receiver.shown.kind == PanelControl::rowIcon) {
        const QPointF way = QPointF(to - pressedAt) / on.scale;
        draggedRow |= std::hypot(way.x(), way.y()) >= 3;
    }
}

void Rules::press(int button, int clicks) {
    if (buttons.empty())
        receiver = at(pointer);
    buttons.insert(button);
    RuledDisplay& on = *displays[receiver.display];
    keyboard = receiver.display;
    if (button != 1)
        return;
    pressedAt = pointer;
    draggedRow = false;
    if (receiver.part == Receiver::canvas) {
        on.editor.gestures.press({.location = on.viewPoint(pointer), .clickCount = clicks});
    } else if (receiver.part == Receiver::text) {
        on.leaveField();
        on.textHasFocus = true;
        sendToText(clicks == 2 ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress);
    } else if (receiver.part == Receiver::control && on.isEnabled(receiver.shown)) {
        pressControl(receiver);
    }
}

// What a control does at once; the others wait for the release.
void Rules::pressControl(const Receiver& over) {
    RuledDisplay& on = *displays[over.display];
    switch (over.shown.kind) {
    case PanelControl::smaller:
    case PanelControl::larger:
    case PanelControl::share:
    case PanelControl::rowLabel:
        return act(on, over.shown, over.layer);
    case PanelControl::color:
        dialog = Dialog::color;
        return;
    case PanelControl::sizeField:
        return on.beginField();
    default:
        return;
    }
}

void Rules::release(int button) {
    buttons.erase(button);
    if (button != 1 || !open)
        return;
    RuledDisplay& on = *displays[receiver.display];
    if (receiver.part == Receiver::canvas)
        on.editor.gestures.release(on.viewPoint(pointer));
    else if (receiver.part == Receiver::text)
        sendToText(QEvent::MouseButtonRelease);
    else if (receiver.part == Receiver::control)
        releaseControl();
}

void Rules::releaseControl() {
    RuledDisplay& on = *displays[receiver.display];
    if (receiver.shown.kind == PanelControl::rowIcon)
        return dropRow();
    const Receiver now = at(pointer);
    const bool same = now.display == receiver.display && now.part == Receiver::control &&
                      now.shown.kind == receiver.shown.kind && now.shown.index == receiver.shown.index &&
                      now.layer == receiver.layer;
    const bool waits =
        receiver.shown.kind <= PanelControl::undo || receiver.shown.kind == PanelControl::redo ||
        receiver.shown.kind == PanelControl::save || receiver.shown.kind == PanelControl::copy ||
        receiver.shown.kind == PanelControl::rowTrash;
    if (same && waits && on.isEnabled(receiver.shown))
        act(on, receiver.shown, receiver.layer);
}

void Rules::dropRow() {
    RuledDisplay& on = *displays[receiver.display];
    if (!draggedRow)
        return act(on, receiver.shown, receiver.layer);
    const PanelPlaces places = on.places();
    const QRectF panel = places.panels()[1];
    const double top = places.center(PanelControl::rowIcon, 0).y();
    const double pitch =
        places.controls().front().area.width() * 32 / 42; // Rows and tools share one magnification.
    const QPointF p = on.toPoints(pointer);
    const int rows = int(on.document().state.annotations.size());
    const int insertion = LayerListRules::insertion(p.y() - top + pitch / 2, pitch, rows);
    const auto index = LayerListRules::annotationIndex(receiver.shown.index, insertion, rows);
    if (index && QRectF(panel.left(), top - pitch / 2, panel.width(), pitch * rows).contains(p))
        on.editor.layers.reorderAnnotation(receiver.layer, *index);
}

void Rules::act(RuledDisplay& on, const PanelControl& control, const QUuid& layer) {
    // A size that is still being typed is taken over first.
    const bool isRow = control.kind >= PanelControl::rowIcon;
    if (on.fieldHasFocus)
        on.editor.layers.returnFocus();
    switch (control.kind) {
    case PanelControl::tool:
        return on.editor.layers.selectTool(AnnotationTool(control.index));
    case PanelControl::undo:
        return on.editor.layers.undo();
    case PanelControl::redo:
        return on.editor.layers.redo();
    case PanelControl::smaller:
        return on.editor.layers.stepSize(-1);
    case PanelControl::larger:
        return on.editor.layers.stepSize(1);
    case PanelControl::save:
        return on.editor.output.saveSelection();
    case PanelControl::copy:
        return on.editor.output.copySelection();
    case PanelControl::share:
        if (on.editor.output.imageToShare()) {
            journal << QStringLiteral("shareRequested");
            dialog = Dialog::share;
        }
        return;
    default:
        if (isRow && control.kind != PanelControl::rowTrash)
            on.editor.layers.selectAnnotation(layer);
        else if (isRow)
            on.editor.layers.deleteAnnotation(layer);
    }
}

void Rules::sendToText(QEvent::Type type) {
    RuledDisplay& on = *displays[receiver.display];
    if (!on.textView)
        return;
    const QPointF local = on.toPoints(pointer) - on.textView->pos();
    const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, local, local, button, held, QGuiApplication::keyboardModifiers());
    QApplication::sendEvent(on.textView->viewport(), &event);
}

void Rules::key(QKeyEvent& event) {
    if (open)
        keyDisplay().key(event);
}

void Rules::dialogEnded(const QString& outcome) {
    if (dialog != Dialog::color)
        journal << outcome;
    dialog = Dialog::none;
    if (outcome == u"saveSucceeded" || outcome == u"shareSucceeded")
        close();
}

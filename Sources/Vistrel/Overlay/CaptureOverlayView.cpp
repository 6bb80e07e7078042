#include "Overlay/CaptureOverlayView.h"

#include "Annotations/ViewFlip.h"
#include "Editor/ExactPosition.h"
#include "Overlay/CanvasCursor.h"
#include "Overlay/CanvasPainter.h"
#include "Overlay/CanvasTextEditor.h"
#include "Overlay/KeyEventTranslation.h"
#include "Overlay/OverlayEditor.h"
#include "Overlay/OverlayPanels.h"
#include "Overlay/SelectionCursors.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleHints>

/// What the canvas shows, beside the session itself.
struct CanvasState {
    QImage presentation;
    CanvasSpace space;
    BadgeText badgeText;
    DecorationLayout layout;
    std::optional<CanvasCursor> cursor;
    /// Where the last event saw the pointer, in widget points with their fraction; asking the window system
    /// takes a round trip.
    std::optional<QPointF> pointer;
    /// When the canvas itself was last pressed, in the window system's milliseconds.
    std::optional<quint64> pressedAt;
    /// Made with the first selection, then kept.
    std::unique_ptr<OverlayPanels> panels;

    ViewFlip flip() const { return {space.viewSize.height}; }
};

CaptureOverlayView::CaptureOverlayView(EditorPreferences& editorPreferences, QWidget* parent)
    : QWidget(parent),
      preferences(editorPreferences),
      canvas(std::make_unique<CanvasState>()),
      editor(std::make_unique<OverlayEditor>()) {
    setObjectName(QStringLiteral("captureCanvas"));
    setAccessibleName(QStringLiteral("Capture canvas"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    // The rules give it the keyboard: a click policy would take clicks on the panels for clicks on it, too.
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    editor->session.hooks = makeHooks();
    connect(&preferences, &EditorPreferences::scalePercentChanged, this, &CaptureOverlayView::updatePanels);
}

CaptureOverlayView::~CaptureOverlayView() {
    // The open editor is a child of this widget.
    editor->text.discard();
}

OverlayHooks CaptureOverlayView::makeHooks() {
    return {.onDiagnosticEvent =
                [this](Diagnostic::Action action, const Diagnostic::Details& details) {
                    if (onDiagnosticEvent)
                        onDiagnosticEvent(action, details);
                },
            .onClose =
                [this] {
                    if (onClose)
                        onClose();
                },
            .onSelection =
                [this] {
                    if (onSelection)
                        onSelection();
                },
            .onCopy =
                [this](const QImage& image) {
                    if (onCopy)
                        onCopy(image);
                },
            .onSave =
                [this](const QImage& image) {
                    if (onSave)
                        onSave(image);
                },
            .onChange = [this] { updateGeometry(); },
            .focusCanvas = [this] { setFocus(); },
            .closeColorPicker =
                [this] {
                    if (canvas->panels)
                        canvas->panels->closePicker();
                },
            .doubleClickOutsideToCancel = [this] { return preferences.doubleClickOutsideToCancel(); },
            .openTextEditor =
                [this](const TextEditorSetup& setup) {
                    auto opened = std::make_unique<CanvasTextEditor>(*this, canvas->flip(), setup);
                    opened->setCallbacks([this] { editor->text.commit(); },
                                         [this] { editor->text.cancel(); });
                    return opened;
                }};
}

void CaptureOverlayView::resetSession(const CapturedImage& captured, double displayScale, Size viewSize) {
    editor->text.discard();
    if (canvas->panels) {
        canvas->panels->dismissHints();
        canvas->panels->closePicker();
        canvas->panels->setVisible(false);
    }
    OverlaySession& session = editor->session;
    session.document.reset(captured.image, displayScale, viewSize);
    if (canvas->panels)
        canvas->panels->show(session.document);
    session.renderer.clearPatches();
    session.damage.take();
    onFirstDraw = nullptr;
    onFirstDrawStarted = nullptr;

    canvas->presentation = captured.presentation.isNull() ? captured.image : captured.presentation;
    canvas->presentation.setDevicePixelRatio(1);
    canvas->space = {viewSize, canvas->presentation.size()};
    canvas->layout = DecorationLayout::of(session.document, canvas->space, canvas->badgeText);
    canvas->cursor.reset();
    canvas->pointer.reset();
    canvas->pressedAt.reset();
    setCursor(Qt::CrossCursor);
    update();
}

void CaptureOverlayView::prepareText() {
    canvas->badgeText.prepare();
}

bool CaptureOverlayView::hasImage() const {
    return editor->session.document.hasImage();
}

Rect CaptureOverlayView::selection() const {
    return editor->session.document.selection;
}

AnnotationTool CaptureOverlayView::tool() const {
    return editor->session.document.tool;
}

int CaptureOverlayView::layerCount() const {
    return static_cast<int>(editor->session.document.state.annotations.size());
}

int CaptureOverlayView::drawingSize() const {
    return editor->session.document.drawingSize();
}

void CaptureOverlayView::clearForOtherDisplay() {
    editor->text.discard();
    editor->session.document.clearEditing();
    editor->session.renderer.clearPatches();
    updateGeometry();
}

void CaptureOverlayView::discardText() {
    editor->text.discard();
    repaintChanges();
}

void CaptureOverlayView::cancelOperation() {
    if (canvas->panels && canvas->panels->revertTypedSize())
        return;
    editor->keys.cancelOperation();
}

std::optional<QImage> CaptureOverlayView::outputImage() {
    return editor->output.outputImage();
}

void CaptureOverlayView::updateGeometry() {
    updatePanels();
    repaintChanges();
    refreshCanvasCursor();
}

void CaptureOverlayView::updatePanels() {
    const OverlayDocument& document = editor->session.document;
    const bool shows = document.hasImage() && document.selection.width >= 1 &&
                       document.selection.height >= 1 && !document.isCreatingSelection();
    if (shows && !canvas->panels)
        canvas->panels = std::make_unique<OverlayPanels>(
            *this, *editor, OverlayPanels::Actions{[this](QWidget& button) { share(button); }});
    if (!canvas->panels)
        return;
    if (shows) {
        constexpr double designScale = 0.8;
        canvas->panels->show(document);
        canvas->panels->place(document, preferences.scalePercent() / 100 * designScale);
    }
    canvas->panels->setVisible(shows);
}

void CaptureOverlayView::share(QWidget& button) {
    const std::optional<QImage> image = editor->output.imageToShare();
    if (image && onShare)
        onShare(*image, &button);
}

void CaptureOverlayView::repaintChanges() {
    OverlaySession& session = editor->session;
    const std::vector<Rect> damaged = session.damage.take();
    if (!hasImage())
        return;
    DecorationLayout next = DecorationLayout::of(session.document, canvas->space, canvas->badgeText);
    const QRegion changed = CanvasPainter::damage(damaged, canvas->layout, next, canvas->space);
    describe(next);
    canvas->layout = std::move(next);

    const double scale = canvas->space.scale();
    QRegion points;
    for (const QRect& rect : changed)
        points += QRectF(rect.x() / scale, rect.y() / scale, rect.width() / scale, rect.height() / scale)
                      .toAlignedRect();
    update(points);
}

// What the badge shows is what a screen reader says.
void CaptureOverlayView::describe(const DecorationLayout& next) {
    if (QAccessible::isActive() && next.badge && accessibleDescription() != next.badge->text)
        setAccessibleDescription(next.badge->text);
}

void CaptureOverlayView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const OverlayDocument& document = editor->session.document;
    if (!document.hasImage()) {
        painter.fillRect(event->rect(), CanvasPainter::background());
        return;
    }
    if (const auto started = std::exchange(onFirstDrawStarted, nullptr))
        started();
    // From here on the painter's units are device pixels.
    const double scale = canvas->space.scale();
    painter.scale(1 / scale, 1 / scale);
    QRegion region;
    for (const QRect& rect : event->region())
        region += QRectF(rect.x() * scale, rect.y() * scale, rect.width() * scale, rect.height() * scale)
                      .toAlignedRect();
    const CanvasPainter::Picture picture = {
        .presentation = canvas->presentation, .space = canvas->space, .layout = canvas->layout};
    CanvasPainter canvasPainter(painter, region);
    canvasPainter.paintPicture(picture);
    canvasPainter.paintLayers(document, editor->session.renderer, picture);
    canvasPainter.paintDecorations(picture, canvas->badgeText, palette().color(QPalette::Highlight));
    painter.end();
    if (const auto drawn = std::exchange(onFirstDraw, nullptr))
        drawn();
}

Point CaptureOverlayView::pointerMoved(QPointF position) {
    canvas->pointer = position;
    return canvas->space.pointer(position);
}

void CaptureOverlayView::press(QMouseEvent* event, int clickCount) {
    if (event->button() != Qt::LeftButton || !hasImage()) {
        event->ignore();
        return;
    }
    if (!isActiveWindow())
        window()->activateWindow();
    const Point p = pointerMoved(ExactPosition::of(*event, *this));
    // The first click of a double click may have been a button's that has since gone.
    const auto before = std::exchange(canvas->pressedAt, event->timestamp());
    const auto interval = static_cast<quint64>(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    if (!before || event->timestamp() - *before > interval)
        clickCount = 1;
    editor->gestures.press({.location = p, .clickCount = clickCount});
}

void CaptureOverlayView::mousePressEvent(QMouseEvent* event) {
    press(event, 1);
}

void CaptureOverlayView::mouseDoubleClickEvent(QMouseEvent* event) {
    press(event, 2);
}

void CaptureOverlayView::mouseMoveEvent(QMouseEvent* event) {
    const Point p = pointerMoved(ExactPosition::of(*event, *this));
    if (event->buttons() & Qt::LeftButton)
        editor->gestures.drag(p);
    else if (editor->session.document.drag)
        editor->gestures.release(p); // Its release went elsewhere.
    refreshCanvasCursor();
}

void CaptureOverlayView::mouseReleaseEvent(QMouseEvent* event) {
    const Point p = pointerMoved(ExactPosition::of(*event, *this));
    if (event->button() == Qt::LeftButton)
        editor->gestures.release(p);
    refreshCanvasCursor();
}

void CaptureOverlayView::enterEvent(QEnterEvent* event) {
    pointerMoved(ExactPosition::of(*event, *this));
    refreshCanvasCursor();
}

void CaptureOverlayView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    updatePanels();
}

void CaptureOverlayView::keyPressEvent(QKeyEvent* event) {
    if (!hasImage() || !editor->keys.keyDown(keyEventFrom(*event), keyFocus()))
        QWidget::keyPressEvent(event);
}

bool CaptureOverlayView::performKeyEquivalent(QKeyEvent& event) {
    const KeyEvent key = keyEventFrom(event);
    constexpr ModifierMask commands = Modifier::command | Modifier::control;
    return hasImage() && (key.modifiers & commands) && editor->keys.keyEquivalent(key, keyFocus());
}

KeyFocus CaptureOverlayView::keyFocus() const {
    return {.textEditor = editor->text.isEditing() && editor->text.openEditor()->hasFocus(),
            .sizeField = canvas->panels && canvas->panels->sizeFieldHasFocus()};
}

void CaptureOverlayView::pointerFound(QPoint pixel) {
    pointerMoved(QPointF(pixel) / canvas->space.scale());
    refreshCanvasCursor();
}

void CaptureOverlayView::refreshCanvasCursor() {
    if (!hasImage() || !isVisible() || !canvas->pointer)
        return;
    const QPointF position = *canvas->pointer;
    // While a gesture runs, the pointer may be anywhere and still belongs to it.
    const bool isGesture = editor->session.document.drag.has_value();
    if (!isGesture && !QRectF(rect()).contains(position))
        return;
    // Panels are painted to the nearest pixel.
    const double halfPixel = 0.5 / canvas->space.scale();
    const bool overPanel = canvas->panels && canvas->panels->isOver(position + QPointF(halfPixel, halfPixel));
    const CanvasCursor next =
        CanvasCursor::at(canvas->space.pointer(position), editor->session.document, overPanel);
    if (canvas->cursor != next)
        showCursor(next);
}

void CaptureOverlayView::showCursor(const CanvasCursor& cursor) {
    using Shape = CanvasCursor::Shape;
    canvas->cursor = cursor;
    switch (cursor.shape) {
    case Shape::arrow:
        return setCursor(Qt::ArrowCursor);
    case Shape::crosshair:
        return setCursor(Qt::CrossCursor);
    case Shape::iBeam:
        return setCursor(Qt::IBeamCursor);
    case Shape::openHand:
        return setCursor(Qt::OpenHandCursor);
    case Shape::closedHand:
        return setCursor(Qt::ClosedHandCursor);
    case Shape::resize:
        return setCursor(SelectionCursors::resize(cursor.handle, devicePixelRatioF()));
    case Shape::brush:
        return setCursor(SelectionCursors::brush(cursor.diameter, devicePixelRatioF()));
    }
}

#include "Overlay/CaptureOverlayWindow.h"

#include <QApplication>
#include <QBackingStore>
#include <QKeyEvent>
#include <QWindow>

CaptureOverlayWindow::CaptureOverlayWindow(const Screen& screen, EditorPreferences& preferences,
                                           Qt::WindowFlags flags)
    : QWidget(nullptr, flags), display(screen), canvas(new CaptureOverlayView(preferences, this)) {
    setObjectName(QStringLiteral("captureOverlayWindow"));
    setAccessibleName(QStringLiteral("Vistrel capture"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusProxy(canvas);
    setMouseTracking(true);
    canvas->installEventFilter(this);
    setCursor(canvas->cursor());
    const Size points = screen.pointSize();
    resize(static_cast<int>(std::lround(points.width)), static_cast<int>(std::lround(points.height)));
}

void CaptureOverlayWindow::releasePixels() {
    if (QBackingStore* store = backingStore())
        store->resize(QSize(0, 0));
}

bool CaptureOverlayWindow::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::WinIdChange:
        if (windowHandle())
            windowHandle()->installEventFilter(this);
        break;
    case QEvent::Enter:
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        // The toolkit looks for the widget at whole points, and so finds none on the last row and column of
        // pixels. Not sent, as what the canvas ignores would come back.
        return static_cast<QObject*>(canvas)->event(event);
    default:
        break;
    }
    return QWidget::event(event);
}

bool CaptureOverlayWindow::eventFilter(QObject* watched, QEvent* event) {
    // The native window gets a key before any control in it does.
    if (event->type() == QEvent::KeyPress && watched == windowHandle() &&
        !QApplication::activePopupWidget()) {
        if (takesKey(static_cast<QKeyEvent&>(*event)))
            return true;
    }
    if (event->type() == QEvent::CursorChange && watched == canvas)
        setCursor(canvas->cursor());
    return QWidget::eventFilter(watched, event);
}

bool CaptureOverlayWindow::takesKey(QKeyEvent& event) {
    if (!canvas->hasImage())
        return false;
    if (event.key() != Qt::Key_Escape)
        return !dialogAttached && canvas->performKeyEquivalent(event);
    // Behind a dialog the key is kept from the canvas, which would give up the capture.
    if (!dialogAttached && !event.isAutoRepeat())
        canvas->cancelOperation();
    return true;
}

void CaptureOverlayWindow::resizeEvent(QResizeEvent* event) {
    canvas->setGeometry(rect());
    QWidget::resizeEvent(event);
}

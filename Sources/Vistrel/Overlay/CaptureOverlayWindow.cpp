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
    const Size points = screen.pointSize();
    resize(static_cast<int>(std::lround(points.width)), static_cast<int>(std::lround(points.height)));
}

void CaptureOverlayWindow::releasePixels() {
    if (QBackingStore* store = backingStore())
        store->resize(QSize(0, 0));
}

bool CaptureOverlayWindow::event(QEvent* event) {
    if (event->type() == QEvent::WinIdChange && windowHandle())
        windowHandle()->installEventFilter(this);
    return QWidget::event(event);
}

bool CaptureOverlayWindow::eventFilter(QObject* watched, QEvent* event) {
    // The native window gets a key before any control in it does.
    if (event->type() == QEvent::KeyPress && watched == windowHandle() &&
        !QApplication::activePopupWidget()) {
        if (takesKey(static_cast<QKeyEvent&>(*event)))
            return true;
    }
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

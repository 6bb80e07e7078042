#include "Capture/DialogKeys.h"

#include <QKeyEvent>
#include <QWidget>
#include <QWindow>

void DialogKeys::ignoreHeld(QWidget& dialog) {
    new DialogKeys(dialog);
}

DialogKeys::DialogKeys(QWidget& dialog) : QObject(&dialog) {
    dialog.installEventFilter(this);
}

bool DialogKeys::eventFilter(QObject* watched, QEvent* event) {
    auto* dialog = static_cast<QWidget*>(parent());
    // The native window gets a key before any control in it does.
    if (event->type() == QEvent::Show && watched == dialog)
        dialog->windowHandle()->installEventFilter(this);
    if (event->type() != QEvent::KeyPress || watched != dialog->windowHandle())
        return false;
    const auto& press = static_cast<QKeyEvent&>(*event);
    switch (press.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
        return press.isAutoRepeat();
    default:
        return false;
    }
}

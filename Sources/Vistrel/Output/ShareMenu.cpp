#include "Output/ShareMenu.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QStyleHints>

bool ShareMenu::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
        if (belongsToOpening(static_cast<const QMouseEvent&>(*event))) {
            event->accept();
            return true;
        }
        break;
    default:
        break;
    }
    return QMenu::event(event);
}

bool ShareMenu::belongsToOpening(const QMouseEvent& event) {
    if (event.type() == QEvent::MouseButtonRelease)
        return !std::exchange(pressed, false);
    const auto interval = static_cast<quint64>(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    const bool repeats = event.type() == QEvent::MouseButtonDblClick ||
                         (repeatedAt && event.timestamp() - *repeatedAt < interval);
    pressed = !repeats;
    if (repeats)
        repeatedAt = event.timestamp();
    return repeats;
}

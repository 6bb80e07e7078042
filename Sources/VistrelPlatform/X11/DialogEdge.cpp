#include "VistrelPlatform/X11/DialogEdge.h"

#include <QEvent>
#include <QPainter>

namespace {
constexpr char edgeName[] = "dialogEdge";
}

void DialogEdge::addTo(QWidget& dialog) {
    if (!dialog.findChild<QWidget*>(QLatin1StringView(edgeName), Qt::FindDirectChildrenOnly))
        new DialogEdge(dialog);
}

DialogEdge::DialogEdge(QWidget& dialog) : QWidget(&dialog) {
    setObjectName(QLatin1StringView(edgeName));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    dialog.installEventFilter(this);
    surround();
}

void DialogEdge::surround() {
    const QRect all = parentWidget()->rect();
    setGeometry(all);
    // Only the rim is painted again when something beneath changes.
    setMask(QRegion(all) - QRegion(all.adjusted(1, 1, -1, -1)));
    raise();
}

bool DialogEdge::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show)
        surround();
    return false;
}

void DialogEdge::paintEvent(QPaintEvent*) {
    QColor color = palette().color(QPalette::WindowText);
    constexpr float strength = 0.45F;
    color.setAlphaF(strength);
    QPainter painter(this);
    const double line = 1 / devicePixelRatioF();
    const QRectF outer(rect());
    painter.fillRect(QRectF(outer.left(), outer.top(), outer.width(), line), color);
    painter.fillRect(QRectF(outer.left(), outer.bottom() - line, outer.width(), line), color);
    painter.fillRect(QRectF(outer.left(), outer.top() + line, line, outer.height() - 2 * line), color);
    painter.fillRect(QRectF(outer.right() - line, outer.top() + line, line, outer.height() - 2 * line),
                     color);
}

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
    // Only the rim is painted again when something beneath changes. A pixel of it may lie in the second point
    // from the edge, as points are rounded to pixels at fractional scales.
    constexpr int rim = 2;
    setMask(QRegion(all) - QRegion(all.adjusted(rim, rim, -rim, -rim)));
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
    // In pixels: what is not aligned to them is left out at fractional scales.
    const QTransform toDevice = painter.deviceTransform();
    const QRect outer = toDevice.mapRect(QRectF(rect())).toRect();
    painter.setWorldTransform(toDevice.inverted(), true);
    for (const QRect& strip : QRegion(outer) - QRegion(outer.adjusted(1, 1, -1, -1)))
        painter.fillRect(strip, color);
}

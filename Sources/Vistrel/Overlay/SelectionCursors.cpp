#include "Overlay/SelectionCursors.h"

#include <QCoreApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <map>

namespace {

constexpr double resizeSide = 24;
// Below this a circle would hide the point being drawn.
constexpr double smallestBrush = 10;

/// `halo` first in white, then `line` in black, so that the pointer shows on light and on dark.
QCursor outlinedCursor(const QPainterPath& path, double side, double halo, double line, double ratio) {
    const int pixels = static_cast<int>(std::lround(side * ratio));
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / side, pixels / side);
    for (const auto& [color, width] : {std::pair(Qt::white, halo), std::pair(Qt::black, line)})
        painter.strokePath(path, QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.end();
    pixmap.setDevicePixelRatio(ratio);
    // The X server is handed the hot spot as it is, so it counts the image's own pixels.
    const int center = static_cast<int>(std::lround(side / 2 * ratio));
    return QCursor(pixmap, center, center);
}

/// Points are given with y up, as the handles are.
void addLine(QPainterPath& path, std::initializer_list<QPointF> points) {
    bool first = true;
    for (const QPointF p : points) {
        const QPointF flipped(p.x(), resizeSide - p.y());
        first ? path.moveTo(flipped) : path.lineTo(flipped);
        first = false;
    }
}

QCursor diagonal(bool rising, double ratio) {
    QPainterPath path;
    if (rising) {
        addLine(path, {{5, 5}, {19, 19}});
        addLine(path, {{5, 11}, {5, 5}, {11, 5}});
        addLine(path, {{13, 19}, {19, 19}, {19, 13}});
    } else {
        addLine(path, {{5, 19}, {19, 5}});
        addLine(path, {{5, 13}, {5, 19}, {11, 19}});
        addLine(path, {{13, 5}, {19, 5}, {19, 11}});
    }
    return outlinedCursor(path, resizeSide, 4, 2, ratio);
}

} // namespace

QCursor SelectionCursors::resize(int handle, double devicePixelRatio) {
    switch (handle) {
    case 1:
    case 5:
        return Qt::SizeVerCursor;
    case 3:
    case 7:
        return Qt::SizeHorCursor;
    default:
        break;
    }
    static std::map<std::pair<bool, double>, QCursor> kept;
    // Pixmaps must not outlive the application.
    if (kept.empty())
        qAddPostRoutine([] { kept.clear(); });
    const std::pair key(handle == 0 || handle == 4, devicePixelRatio);
    const auto found = kept.find(key);
    if (found != kept.end())
        return found->second;
    return kept.emplace(key, diagonal(key.first, devicePixelRatio)).first->second;
}

QCursor SelectionCursors::brush(double diameter, double devicePixelRatio) {
    if (diameter < smallestBrush)
        return Qt::CrossCursor;
    constexpr double arm = 4;
    const double side = std::max(std::ceil(diameter + 6), 24.0);
    const QPointF center(side / 2, side / 2);
    QPainterPath path;
    path.addEllipse(center, diameter / 2, diameter / 2);
    path.moveTo(center - QPointF(arm, 0));
    path.lineTo(center + QPointF(arm, 0));
    path.moveTo(center - QPointF(0, arm));
    path.lineTo(center + QPointF(0, arm));
    return outlinedCursor(path, side, 3, 1, devicePixelRatio);
}

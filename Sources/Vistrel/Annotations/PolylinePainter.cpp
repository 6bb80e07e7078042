#include "Annotations/PolylinePainter.h"

#include "Annotations/ViewFlip.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int tileSide = 256;
/// From the outline to the centre of the last pixel that it touches, in pixels.
constexpr float smoothing = 0.5F;
/// Rounds down to the 256 levels, each as wide as the others.
constexpr float fullLevel = 255.999F;

/// A part of the line in pixels of a tile.
struct Segment {
    float ax;
    float ay;
    float bx;
    float by;

    Segment translated(QPoint offset) const {
        const auto dx = static_cast<float>(offset.x());
        const auto dy = static_cast<float>(offset.y());
        return {ax + dx, ay + dy, bx + dx, by + dy};
    }
    bool touches(const QRect& area, float reach) const {
        return std::max(ax, bx) + reach >= static_cast<float>(area.left()) &&
               std::min(ax, bx) - reach <= static_cast<float>(area.left() + area.width()) &&
               std::max(ay, by) + reach >= static_cast<float>(area.top()) &&
               std::min(ay, by) - reach <= static_cast<float>(area.top() + area.height());
    }
};

/// How much of each pixel a line covers: the most that any part of it does.
class Coverage {
public:
    Coverage(QSize extent, float lineRadius) : size(extent), reach(lineRadius + smoothing) {
        levels.resize(static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height()));
    }

    void add(const Segment& segment) {
        const int first = pixel(std::min(segment.ay, segment.by) - reach, size.height());
        const int end = pixel(std::max(segment.ay, segment.by) + reach + 1, size.height());
        for (int y = first; y < end; ++y)
            addRow(segment, y);
    }

    /// Premultiplied black of the covered alpha.
    QImage image() const {
        QImage result(size, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < size.height(); ++y)
            std::transform(row(y), row(y) + size.width(), reinterpret_cast<QRgb*>(result.scanLine(y)),
                           [](std::uint8_t level) { return static_cast<QRgb>(level) << 24; });
        return result;
    }

private:
    static int pixel(float position, int count) {
        return static_cast<int>(std::clamp(std::floor(position), 0.0F, static_cast<float>(count)));
    }
    const std::uint8_t* row(int y) const {
        return levels.data() + static_cast<std::ptrdiff_t>(y) * size.width();
    }

    void addRow(const Segment& segment, int y) {
        const float dx = segment.bx - segment.ax;
        const float dy = segment.by - segment.ay;
        const float fromA = static_cast<float>(y) + 0.5F - segment.ay;
        // Only what is near enough to this row can reach into it.
        float begin = 0;
        float end = 1;
        if (std::abs(dy) > 1e-3F) {
            const auto [near, far] = std::minmax({(fromA - reach) / dy, (fromA + reach) / dy});
            begin = std::clamp(near, 0.0F, 1.0F);
            end = std::clamp(far, 0.0F, 1.0F);
        }
        const auto [left, right] = std::minmax({segment.ax + begin * dx, segment.ax + end * dx});
        const int last = pixel(right + reach + 1, size.width());
        const float squaredLength = dx * dx + dy * dy;
        const float perLength = squaredLength > 0 ? 1 / squaredLength : 0;
        auto* level = levels.data() + static_cast<std::ptrdiff_t>(y) * size.width();
        for (int x = pixel(left - reach, size.width()); x < last; ++x) {
            const float along = static_cast<float>(x) + 0.5F - segment.ax;
            const float t = std::clamp((along * dx + fromA * dy) * perLength, 0.0F, 1.0F);
            const float ex = along - t * dx;
            const float ey = fromA - t * dy;
            const float covered = std::clamp(reach - std::sqrt(ex * ex + ey * ey), 0.0F, 1.0F);
            level[x] = std::max(level[x], static_cast<std::uint8_t>(covered * fullLevel));
        }
    }

    QSize size;
    float reach;
    std::vector<std::uint8_t> levels;
};

bool comesNear(const Rect& area, Point a, Point b) {
    return std::max(a.x, b.x) >= area.minX() && std::min(a.x, b.x) <= area.maxX() &&
           std::max(a.y, b.y) >= area.minY() && std::min(a.y, b.y) <= area.maxY();
}

/// What comes near the area, in pixels of the device.
std::vector<Segment> segments(std::span<const Point> points, const Rect& area, const QTransform& toDevice) {
    std::vector<Segment> found;
    const auto add = [&](Point from, Point to) {
        if (!comesNear(area, from, to))
            return;
        const QPointF a = toDevice.map(toQPointF(from));
        const QPointF b = toDevice.map(toQPointF(to));
        found.push_back({static_cast<float>(a.x()), static_cast<float>(a.y()), static_cast<float>(b.x()),
                         static_cast<float>(b.y())});
    };
    if (points.size() == 1)
        add(points.front(), points.front());
    for (std::size_t i = 1; i < points.size(); ++i)
        add(points[i - 1], points[i]);
    return found;
}

/// The brush where the mask covers it.
void color(QImage& mask, const QBrush& brush, const QPainter& like, const QTransform& toMask) {
    QPainter painter(&mask);
    painter.setRenderHints(like.renderHints() & QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.setTransform(toMask);
    constexpr int margin = 1;
    painter.fillRect(
        toMask.inverted().mapRect(QRectF(mask.rect().adjusted(-margin, -margin, margin, margin))), brush);
}

} // namespace

void PolylinePainter::paint(std::span<const Point> points, double width, const QBrush& brush,
                            QPainter& painter, const Rect& visible) {
    const QTransform toDevice = painter.deviceTransform();
    const double scale = std::sqrt(std::abs(toDevice.determinant()));
    // A finer line than one pixel is as wide as that.
    const auto radius = static_cast<float>(std::max(width * scale, 1.0) / 2);
    const double reach = static_cast<double>(radius + smoothing) / scale;
    const std::vector<Segment> line = segments(points, visible.insetBy(-reach), toDevice);
    if (line.empty())
        return;
    const QRect area = toDevice.mapRect(toQRectF(visible)).toAlignedRect();
    painter.save();
    painter.setWorldTransform(toDevice.inverted(), true);
    for (int top = area.top(); top <= area.bottom(); top += tileSide) {
        for (int left = area.left(); left <= area.right(); left += tileSide) {
            const QRect tile = QRect(left, top, tileSide, tileSide) & area;
            Coverage coverage(tile.size(), radius);
            bool isTouched = false;
            for (const Segment& segment : line) {
                if (!segment.touches(tile, radius + smoothing))
                    continue;
                coverage.add(segment.translated(-tile.topLeft()));
                isTouched = true;
            }
            if (!isTouched)
                continue;
            QImage picture = coverage.image();
            color(picture, brush, painter, toDevice * QTransform::fromTranslate(-tile.left(), -tile.top()));
            painter.drawImage(tile.topLeft(), picture);
        }
    }
    painter.restore();
}

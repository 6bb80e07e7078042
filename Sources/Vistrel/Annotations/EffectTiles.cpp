#include "Annotations/EffectTiles.h"

#include <set>

namespace {

constexpr int tileEdge = 128;
/// Smoothed edges of a blur stroke reach this far beyond it, in pixels.
constexpr double strokeEdge = 2;

EffectFilters::Blocks blocksOf(const EditorAnnotation& effect, const ImageSpace& space) {
    if (effect.tool == AnnotationTool::blur)
        return {};
    return EffectFilters::Blocks::ofEdge(space.pixelsPerPointX() * effect.width, space.size().height());
}

} // namespace

EffectTiles::EffectTiles(const EditorAnnotation& effect, const ImageSpace& imageSpace)
    : tool(effect.tool),
      blocks(blocksOf(effect, imageSpace)),
      blocksPerTile(std::max(1, static_cast<int>(tileEdge / blocks.edge))),
      picture(imageSpace.wholeImage()),
      space(imageSpace) {}

bool EffectTiles::isFor(const EditorAnnotation& effect) const {
    return effect.tool == tool && blocksOf(effect, space) == blocks;
}

QRect EffectTiles::area(Index tile) const {
    const int left = blocks.left(tile.first * blocksPerTile);
    const int top = blocks.top(tile.second * blocksPerTile);
    const int right = blocks.left((tile.first + 1) * blocksPerTile);
    const int bottom = blocks.top((tile.second + 1) * blocksPerTile);
    return QRect(left, top, right - left, bottom - top) & picture;
}

EffectTiles::Index EffectTiles::indexAt(QPoint pixel) const {
    return {blocks.columnAt(pixel.x()) / blocksPerTile, blocks.rowAt(pixel.y()) / blocksPerTile};
}

std::vector<EffectTiles::Index> EffectTiles::shownIn(const EditorAnnotation& effect,
                                                     const QRegion& within) const {
    std::set<Index> found;
    const auto addTouched = [&](const QRect& touched) {
        if (touched.isEmpty())
            return;
        const Index first = indexAt(touched.topLeft());
        const Index last = indexAt(touched.bottomRight());
        for (int row = first.second; row <= last.second; ++row)
            for (int column = first.first; column <= last.first; ++column)
                if (!found.contains({column, row}) && within.intersects(area({column, row}) & touched))
                    found.insert({column, row});
    };
    if (!isBlur()) {
        addTouched(space.pixels(effect.geometryBounds()) & within.boundingRect());
        return {found.begin(), found.end()};
    }
    // A stroke that crosses the picture touches few of the tiles in its bounds: follow it.
    const QRect bounds = within.boundingRect();
    const QTransform toPixels = space.toPixels();
    const double reach = effect.width * space.pixelsPerPointX() / 2 + strokeEdge;
    const Rect seen = space.view(bounds).insetBy(-reach / space.pixelsPerPointX());
    for (std::size_t i = 0; i < effect.points.size(); ++i) {
        const Point start = effect.points[i > 0 ? i - 1 : 0];
        const Point end = effect.points[i];
        if (std::max(start.x, end.x) < seen.minX() || std::min(start.x, end.x) > seen.maxX() ||
            std::max(start.y, end.y) < seen.minY() || std::min(start.y, end.y) > seen.maxY())
            continue;
        const QPointF from = toPixels.map(toQPointF(start));
        const QPointF to = toPixels.map(toQPointF(end));
        const QPointF way = to - from;
        const int parts = 1 + static_cast<int>(std::max(std::abs(way.x()), std::abs(way.y())) / tileEdge);
        for (int part = 0; part < parts; ++part) {
            const QRectF line =
                QRectF(from + way * part / parts, from + way * (part + 1) / parts).normalized();
            addTouched(line.adjusted(-reach, -reach, reach, reach).toAlignedRect() & bounds);
        }
    }
    return {found.begin(), found.end()};
}

QRect EffectTiles::source(const QRect& tiles) const {
    if (!isBlur())
        return tiles;
    constexpr int reach = EffectFilters::blurReach;
    return tiles.adjusted(-reach, -reach, reach, reach) & picture;
}

QRegion EffectTiles::spread(const QRegion& changed) const {
    QRegion result;
    for (const QRect& rect : changed)
        result += isBlur() ? source(rect) : blocks.whole(rect) & picture;
    return result;
}

QImage EffectTiles::imageWithRim(Index tile) const {
    const QRect own = area(tile);
    const QRect wide = own.adjusted(-1, -1, 1, 1);
    QImage result(wide.size(), QImage::Format_RGB32);
    const auto pixelAt = [&](QPoint at) {
        const QPoint inPicture = {std::clamp(at.x(), 0, picture.right()),
                                  std::clamp(at.y(), 0, picture.bottom())};
        const Index neighbour = indexAt(inPicture);
        if (contains(neighbour))
            return image(neighbour).pixel(inPicture - area(neighbour).topLeft());
        return image(tile).pixel(std::clamp(at.x(), own.left(), own.right()) - own.left(),
                                 std::clamp(at.y(), own.top(), own.bottom()) - own.top());
    };
    for (int y = wide.top(); y <= wide.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(result.scanLine(y - wide.top()));
        if (y >= own.top() && y <= own.bottom()) {
            std::memcpy(line + 1, image(tile).constScanLine(y - own.top()),
                        static_cast<std::size_t>(own.width()) * 4);
            line[0] = pixelAt({wide.left(), y});
            line[own.width() + 1] = pixelAt({wide.right(), y});
            continue;
        }
        for (int x = wide.left(); x <= wide.right(); ++x)
            line[x - wide.left()] = pixelAt({x, y});
    }
    return result;
}

void EffectTiles::fill(const EffectFilters::Source& below, const QRegion& tiles) {
    // In bands, so that filtering a whole display needs no second picture of its size.
    constexpr int bandTiles = 4;
    for (const QRect& rect : tiles) {
        const Index index = indexAt(rect.topLeft());
        const int lastColumn = indexAt(rect.bottomRight()).first;
        const int lastRow = indexAt(rect.bottomRight()).second;
        for (int row = index.second; row <= lastRow; row += bandTiles) {
            const QRect band =
                area({index.first, row}).united(area({lastColumn, std::min(row + bandTiles - 1, lastRow)}));
            const QImage filtered =
                isBlur() ? EffectFilters::blur(below, band) : EffectFilters::pixelate(below, band, blocks);
            for (int y = row; y <= std::min(row + bandTiles - 1, lastRow); ++y)
                for (int x = index.first; x <= lastColumn; ++x)
                    images[{x, y}] = filtered.copy(area({x, y}).translated(-band.topLeft()));
        }
    }
}

void EffectTiles::drop(const QRegion& pixels) {
    std::erase_if(images, [&](const auto& entry) { return pixels.intersects(area(entry.first)); });
}

#include "Annotations/EffectPatches.h"

#include "Annotations/LayerPainter.h"

#include <QPainter>

namespace {

using Layers = std::span<const EditorAnnotation>;

bool isEffect(const EditorAnnotation& annotation) {
    return AnnotationTools::isEffect(annotation.tool);
}

/// Many small areas cost more to tell apart than they save.
QRegion simplified(const QRegion& region) {
    constexpr int manyRects = 200;
    return region.rectCount() > manyRects ? QRegion(region.boundingRect()) : region;
}

/// The number of equal layers at the bottom and, above those that differ, at the top.
std::pair<std::size_t, std::size_t> equalEnds(Layers a, Layers b) {
    const std::size_t shorter = std::min(a.size(), b.size());
    std::size_t bottom = 0;
    while (bottom < shorter && a[bottom] == b[bottom])
        ++bottom;
    std::size_t top = 0;
    while (top < shorter - bottom && a[a.size() - 1 - top] == b[b.size() - 1 - top])
        ++top;
    return {bottom, top};
}

bool haveSameIDs(Layers a, Layers b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const EditorAnnotation& x, const EditorAnnotation& y) { return x.id == y.id; });
}

/// A part of the picture as an image of its own; only the pixels of `needed` are filled in.
QImage cut(const QImage& image, const QRegion& needed) {
    const QPoint origin = needed.boundingRect().topLeft();
    QImage part(needed.boundingRect().size(), QImage::Format_RGB32);
    const bool direct = image.format() == QImage::Format_RGB32;
    for (const QRect& rect : needed) {
        const QImage source = direct ? image : image.copy(rect).convertToFormat(QImage::Format_RGB32);
        const QPoint from = direct ? rect.topLeft() : QPoint();
        const QPoint to = rect.topLeft() - origin;
        for (int y = 0; y < rect.height(); ++y)
            std::memcpy(part.scanLine(to.y() + y) + qsizetype{4} * to.x(),
                        source.constScanLine(from.y() + y) + qsizetype{4} * from.x(),
                        static_cast<std::size_t>(rect.width()) * 4);
    }
    return part;
}

/// Whether the painter puts every pixel of the picture on exactly one of its device's.
bool isUnscaled(const QPainter& painter, const ImageSpace& space) {
    constexpr double rounding = 1e-6;
    const QTransform map = space.toView() * painter.deviceTransform();
    const auto isWhole = [](double value) { return std::abs(value - std::round(value)) < 1e-3; };
    return std::abs(map.m11() - 1) < rounding && std::abs(map.m22() - 1) < rounding &&
           std::abs(map.m12()) < rounding && std::abs(map.m21()) < rounding && isWhole(map.dx()) &&
           isWhole(map.dy());
}

void paintBlurTile(const EditorAnnotation& effect, const EffectTiles& tiles, EffectTiles::Index tile,
                   QPainter& painter, const ImageSpace& space, const QRect& visible) {
    const bool unscaled = isUnscaled(painter, space);
    const QRect area = tiles.area(tile);
    const Rect seen = space.view(area & visible);
    QBrush brush(unscaled ? tiles.image(tile) : tiles.imageWithRim(tile));
    const QPoint origin = unscaled ? area.topLeft() : area.topLeft() - QPoint(1, 1);
    brush.setTransform(QTransform::fromTranslate(origin.x(), origin.y()) * space.toView());
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !unscaled);
    painter.setClipRect(toQRectF(seen), Qt::IntersectClip);
    LayerPainter::stroke(effect, painter, LayerPainter::roundPen(brush, effect.width, painter), seen);
    painter.restore();
}

void paintPixelateTile(const EditorAnnotation& effect, const EffectTiles& tiles, EffectTiles::Index tile,
                       QPainter& painter, const ImageSpace& space) {
    const QRect area = tiles.area(tile);
    // Whole pixels: a block that were mixed with what it hides would give it away.
    const QRect shown = area & space.pixels(effect.geometryBounds());
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.setTransform(space.toView(), true);
    painter.drawImage(QRectF(shown), tiles.image(tile), QRectF(shown.translated(-area.topLeft())));
    painter.restore();
}

} // namespace

void EffectPatches::clear() {
    patches.clear();
    basis.reset();
}

void EffectPatches::prepare(const Document& document, const QRegion& visible) {
    if (std::none_of(document.layers.begin(), document.layers.end(), isEffect)) {
        clear();
        return;
    }
    dropOutdated(document);
    remember(document);
    QRegion needed;
    const std::vector<Missing> missing = findMissing(document, visible, needed);
    if (!missing.empty())
        compute(document, missing, needed);
}

void EffectPatches::paint(const EditorAnnotation& effect, QPainter& painter, const ImageSpace& space,
                          const QRegion& visible) const {
    const auto found = patches.find(effect.id);
    if (found == patches.end())
        return;
    const EffectTiles& tiles = found->second;
    for (const EffectTiles::Index& tile : tiles.shownIn(effect, visible)) {
        if (!tiles.contains(tile))
            continue;
        if (effect.tool == AnnotationTool::blur)
            paintBlurTile(effect, tiles, tile, painter, space, visible.boundingRect());
        else
            paintPixelateTile(effect, tiles, tile, painter, space);
    }
}

void EffectPatches::dropOutdated(const Document& document) {
    if (!basis || basis->imageKey != document.image.cacheKey() || basis->space != document.space) {
        clear();
        return;
    }
    std::map<QUuid, const EditorAnnotation*> effects;
    for (const EditorAnnotation& layer : document.layers)
        if (isEffect(layer))
            effects.emplace(layer.id, &layer);
    std::erase_if(patches, [&](const auto& entry) {
        const auto found = effects.find(entry.first);
        return found == effects.end() || !entry.second.isFor(*found->second);
    });

    const Layers before = basis->layers;
    const Layers after = document.layers;
    const auto [bottom, top] = equalEnds(before, after);
    const QRegion unequalSelection = QRegion(basis->selection).xored(document.selection);
    if (bottom == after.size() && bottom == before.size() && unequalSelection.isEmpty())
        return;
    const auto painted = [&](const EditorAnnotation& layer) {
        return document.space.pixels(layer.paintedBounds());
    };
    const Layers unlikeBefore = before.subspan(bottom, before.size() - top - bottom);
    const Layers unlikeAfter = after.subspan(bottom, after.size() - top - bottom);
    const bool inPlace = haveSameIDs(unlikeBefore, unlikeAfter);
    QRegion changed;
    if (!inPlace)
        for (const Layers& layers : {unlikeBefore, unlikeAfter})
            for (const EditorAnnotation& layer : layers)
                changed += painted(layer);
    for (std::size_t i = unequalSelection.isEmpty() ? bottom : 0; i < after.size(); ++i) {
        changed = simplified(changed);
        if (isEffect(after[i]) && !changed.isEmpty())
            changed += dropChanged(after[i], document, changed);
        if (inPlace && i >= bottom && i < after.size() - top)
            changed += QRegion(painted(before[i])) + painted(after[i]);
        if (!unequalSelection.isEmpty())
            changed += unequalSelection & painted(after[i]);
    }
}

QRegion EffectPatches::dropChanged(const EditorAnnotation& effect, const Document& document,
                                   const QRegion& changed) {
    EffectTiles& tiles = tilesFor(effect, document.space);
    const QRegion spread = tiles.spread(changed);
    tiles.drop(spread);
    return spread & document.space.pixels(effect.paintedBounds());
}

void EffectPatches::remember(const Document& document) {
    if (!basis)
        basis.emplace(Basis{{}, 0, document.space, {}});
    const auto [bottom, top] = equalEnds(basis->layers, document.layers);
    if (basis->layers.size() == document.layers.size())
        std::copy(document.layers.begin() + static_cast<std::ptrdiff_t>(bottom),
                  document.layers.end() - static_cast<std::ptrdiff_t>(top),
                  basis->layers.begin() + static_cast<std::ptrdiff_t>(bottom));
    else
        basis->layers.assign(document.layers.begin(), document.layers.end());
    basis->imageKey = document.image.cacheKey();
    basis->space = document.space;
    basis->selection = document.selection;
}

std::vector<EffectPatches::Missing> EffectPatches::findMissing(const Document& document,
                                                               const QRegion& visible, QRegion& needed) {
    std::vector<Missing> missing;
    QRegion wanted = visible & document.selection;
    // From the top down, as each effect makes the ones below it necessary where it reads them.
    for (std::size_t i = document.layers.size(); i-- > 0;) {
        const EditorAnnotation& layer = document.layers[i];
        if (!isEffect(layer) || !wanted.intersects(document.space.pixels(layer.paintedBounds())))
            continue;
        const EffectTiles& tiles = tilesFor(layer, document.space);
        QRegion absent;
        for (const EffectTiles::Index& tile : tiles.shownIn(layer, wanted))
            if (!tiles.contains(tile))
                absent += tiles.area(tile);
        if (absent.isEmpty())
            continue;
        QRegion sources;
        for (const QRect& rect : absent)
            sources += tiles.source(rect);
        needed = simplified(needed + sources);
        wanted = simplified(wanted + (sources & document.selection));
        missing.push_back({i, absent});
    }
    std::reverse(missing.begin(), missing.end());
    return missing;
}

void EffectPatches::compute(const Document& document, const std::vector<Missing>& missing,
                            const QRegion& needed) {
    QImage below = cut(document.image, needed);
    const QPoint origin = needed.boundingRect().topLeft();
    const QRegion painted = needed & document.selection;
    const Rect seen = document.space.view(painted.boundingRect());
    QPainter painter(&below);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRegion(painted.translated(-origin));
    painter.setTransform(document.space.toPixels() * QTransform::fromTranslate(-origin.x(), -origin.y()));
    auto next = missing.begin();
    for (std::size_t i = 0; next != missing.end(); ++i) {
        const EditorAnnotation& layer = document.layers[i];
        if (next->layer == i) {
            patches.at(layer.id).fill({below, origin, document.space.size()}, next->tiles);
            ++next;
        }
        if (next == missing.end() || !layer.paintedBounds().intersects(seen))
            continue;
        if (isEffect(layer))
            paint(layer, painter, document.space, painted);
        else
            LayerPainter::paint(layer, painter, seen);
    }
}

EffectTiles& EffectPatches::tilesFor(const EditorAnnotation& effect, const ImageSpace& space) {
    return patches.try_emplace(effect.id, effect, space).first->second;
}

#pragma once

#include "Annotations/EditorAnnotation.h"
#include "Annotations/EffectFilters.h"
#include "Annotations/ImageSpace.h"

#include <QRegion>

#include <map>

/// The filtered pixels of one effect layer, kept in tiles of about 128 pixels, so that a stroke costs
/// what it covers and growing it costs what is added. Image pixels.
class EffectTiles {
public:
    /// Column and row of a tile.
    using Index = std::pair<int, int>;

    EffectTiles(const EditorAnnotation& effect, const ImageSpace& imageSpace);

    /// Tiles kept for a layer serve it still after its points changed, but not with other blocks.
    bool isFor(const EditorAnnotation& effect) const;

    QRect area(Index tile) const;
    /// The tiles that the layer shows in `within`.
    std::vector<Index> shownIn(const EditorAnnotation& effect, const QRegion& within) const;
    /// What is read from the layers below to filter an area of whole tiles.
    QRect source(const QRect& tiles) const;
    /// The pixels of the layer that change with these pixels below it.
    QRegion spread(const QRegion& changed) const;

    bool contains(Index tile) const { return images.contains(tile); }
    const QImage& image(Index tile) const { return images.at(tile); }
    /// The tile with one more pixel on every side, so that it can be stretched smoothly.
    QImage imageWithRim(Index tile) const;
    /// Filters the tiles that `tiles` is made of.
    void fill(const EffectFilters::Source& below, const QRegion& tiles);
    /// Drops the tiles that show any of these pixels.
    void drop(const QRegion& pixels);

private:
    Index indexAt(QPoint pixel) const;
    bool isBlur() const { return tool == AnnotationTool::blur; }

    AnnotationTool tool;
    EffectFilters::Blocks blocks;
    int blocksPerTile = 1;
    QRect picture;
    ImageSpace space;
    std::map<Index, QImage> images;
};

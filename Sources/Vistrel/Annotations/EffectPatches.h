#pragma once

#include "Annotations/EffectTiles.h"

#include <QUuid>

#include <map>
#include <span>

class QPainter;

/// The filtered pixels of all effect layers. An effect acts on the picture and on every layer below it,
/// other effects included; what is missing is computed for all of them in one pass from the bottom up.
class EffectPatches {
public:
    /// What effects are computed from: the layers bottom to top and the picture under them.
    struct Document {
        std::span<const EditorAnnotation> layers;
        const QImage& image;
        ImageSpace space;
        /// The pixels that layers may be painted on.
        QRect selection;
    };

    /// Makes sure that every pixel of an effect in `visible` is there and up to date.
    void prepare(const Document& document, const QRegion& visible);
    /// Paints the prepared pixels of one effect. The painter's coordinates are view points, y up.
    void paint(const EditorAnnotation& effect, QPainter& painter, const ImageSpace& space,
               const QRegion& visible) const;
    void clear();

private:
    /// What the kept pixels were computed from.
    struct Basis {
        std::vector<EditorAnnotation> layers;
        qint64 imageKey = 0;
        ImageSpace space;
        QRect selection;
    };
    struct Missing {
        std::size_t layer;
        QRegion tiles;
    };

    void dropOutdated(const Document& document);
    /// Drops what the changed pixels below an effect spoil, and returns the pixels that it shows anew.
    QRegion dropChanged(const EditorAnnotation& effect, const Document& document, const QRegion& changed);
    void remember(const Document& document);
    /// Bottom to top; `needed` receives the pixels that the missing ones are computed from.
    std::vector<Missing> findMissing(const Document& document, const QRegion& visible, QRegion& needed);
    void compute(const Document& document, const std::vector<Missing>& missing, const QRegion& needed);
    EffectTiles& tilesFor(const EditorAnnotation& effect, const ImageSpace& space);

    std::optional<Basis> basis;
    std::map<QUuid, EffectTiles> patches;
};

#pragma once

#include "Annotations/EditorAnnotation.h"

#include <QHash>
#include <QImage>
#include <QUuid>

#include <span>

class QPainter;

/// Paints layers over the captured picture, on the canvas and in the export alike. Keeps the computed
/// patches of blur and pixelate layers until told that they may have changed. One owner, one thread.
class AnnotationRenderer {
public:
    /// What the layers are painted over. `image` is the whole display (pixels), `bounds` the area it
    /// covers in view points, `selection` the area outside which nothing is painted.
    struct Canvas {
        const QImage& image;
        Rect bounds;
        Rect selection;
    };

    /// Bottom (first) to top (last). The painter's coordinates are view points, y up.
    void draw(std::span<const EditorAnnotation> annotations, QPainter& painter, const Canvas& canvas);

    /// Forgets every patch.
    void clearPatches();
    /// Forgets one layer's patch.
    void removePatch(const QUuid& id);

private:
    struct Patch {
        QImage image;
        Rect rect; // view points
    };
    void drawLayer(std::span<const EditorAnnotation> annotations, std::size_t index, QPainter& painter,
                   const Canvas& canvas);
    std::optional<Patch> makePatch(const EditorAnnotation& annotation,
                                   std::span<const EditorAnnotation> prefix, const Canvas& canvas);

    QHash<QUuid, Patch> patches;
};

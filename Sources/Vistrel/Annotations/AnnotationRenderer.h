#pragma once

#include "Annotations/EditorAnnotation.h"

#include <QImage>

#include <memory>
#include <span>

class EffectPatches;
class QPainter;

/// Paints layers over the captured picture, on the canvas and in the export alike. Keeps the computed
/// pixels of blur and pixelate layers and checks them against the layers below and the picture before
/// each use, so nobody has to report changes. One owner, one thread.
class AnnotationRenderer {
public:
    /// What the layers are painted over. `image` is the whole display (pixels), `bounds` the area it
    /// covers in view points, `selection` the area outside which nothing is painted.
    struct Canvas {
        const QImage& image;
        Rect bounds;
        Rect selection;
    };

    AnnotationRenderer();
    ~AnnotationRenderer();
    AnnotationRenderer(const AnnotationRenderer&) = delete;
    AnnotationRenderer& operator=(const AnnotationRenderer&) = delete;

    /// Bottom (first) to top (last). The painter's coordinates are view points, y up. Work is limited to
    /// what the painter's clip lets through.
    void draw(std::span<const EditorAnnotation> annotations, QPainter& painter, const Canvas& canvas);

    /// Gives back the memory of all patches, for when a capture is over.
    void clearPatches();

private:
    std::unique_ptr<EffectPatches> patches;
};

#pragma once

#include "Annotations/AnnotationHistory.h"
#include "Overlay/Drag.h"

#include <QHash>
#include <QImage>

/// One display's capture while it is edited: the picture, the selection, the layers and the choices made
/// for the tools. A value in view points (y up); nothing here knows a window.
struct OverlayDocument {
    /// The text being typed. It becomes a layer, or changes one, only when it is committed.
    struct TextSession {
        /// The layer being edited; absent for a new text.
        std::optional<QUuid> layerID;
        int size = 0;
        QColor color;
        EditorState before;
    };

    OverlayDocument();

    QImage image;
    Size viewSize;
    /// Device pixels per point of the display.
    double displayScale = 1;
    /// The picture has half the display's density, so drawing widths are doubled.
    bool reducedRetina = false;

    /// Width 0 means that nothing is selected.
    Rect selection;
    AnnotationTool tool = AnnotationTool::select;
    EditorState state;
    AnnotationHistory history;
    /// The state from before a gesture that changes layers; recorded when the gesture ends.
    std::optional<EditorState> pendingChange;
    std::optional<Drag> drag;
    std::optional<TextSession> text;

    /// Sizes and colours chosen in this capture; a tool without an entry uses its default.
    QHash<AnnotationTool, int> toolSizes;
    QHash<AnnotationTool, QColor> toolColors;

    /// A new capture, or none when the image is null.
    void reset(const QImage& captured, double scale, Size size);
    /// Drops the selection and everything drawn; the picture and the tools' choices stay.
    void clearEditing();

    bool hasImage() const { return !image.isNull(); }
    bool hasSelection() const { return selection.width > 0 && selection.height > 0; }
    /// The gesture in progress has made a new selection that counts.
    bool isCreatingSelection() const;
    Rect bounds() const { return {0, 0, viewSize.width, viewSize.height}; }
    Size imageSize() const;

    /// Stroke width (or font size) in points of a size in image pixels, and back.
    double widthForSize(int size) const { return size * pointsPerSize(); }
    int sizeForWidth(double width) const;
    int sizeOf(const EditorAnnotation& layer) const;

    /// The tool whose size and colour the controls show; none with the select tool and no layer.
    std::optional<AnnotationTool> styleTool() const;
    int drawingSize() const;
    QColor drawingColor() const;

    /// The layers as they are painted: without the one whose text is being typed.
    std::vector<EditorAnnotation> visibleLayers() const;

    static QColor defaultColor();

private:
    double pointsPerSize() const;
};

#pragma once

#include "Overlay/BadgeText.h"
#include "Overlay/CanvasSpace.h"
#include "Overlay/OverlayDocument.h"

#include <QRegion>

/// Where frame, handles and badge stand, in device pixels (y down). A value: two of them tell what has
/// to be painted again when the document changes.
struct DecorationLayout {
    struct Badge {
        QString text;
        QRect frame;
        friend bool operator==(const Badge&, const Badge&) = default;
    };

    /// The pixels left undimmed; empty when nothing is selected.
    QRect selection;
    /// Thickness of the frame in pixels, and how much of it lies outside the selection.
    int lineWidth = 1;
    int lineOutside = 0;
    std::vector<QRect> handles;
    QRect layerFrame;
    /// With the dark line around them, without which they vanish on white.
    std::vector<QRect> layerHandles;
    /// Thickness of the handles' dark line in pixels.
    int handleLine = 1;
    std::optional<Badge> badge;

    friend bool operator==(const DecorationLayout&, const DecorationLayout&) = default;

    static DecorationLayout of(const OverlayDocument& document, const CanvasSpace& space,
                               const BadgeText& badgeText);

    /// The frame as four strips.
    QRegion frameRegion() const { return strips(selection); }
    QRegion layerFrameRegion() const { return strips(layerFrame); }
    /// What looks different between the two.
    static QRegion difference(const DecorationLayout& before, const DecorationLayout& after);

private:
    QRegion strips(const QRect& around) const;
    QRegion badgeRegion() const { return badge ? QRegion(badge->frame) : QRegion(); }
};

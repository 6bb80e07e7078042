#include "Overlay/OverlaySession.h"

void OverlaySession::report(Diagnostic::Action action, std::optional<AnnotationTool> style,
                            std::optional<int> size) {
    Diagnostic::Details details;
    details.tool = static_cast<int>(style.value_or(document.tool));
    details.size = size.value_or(document.drawingSize());
    details.layers = static_cast<int>(document.state.annotations.size());
    hooks.onDiagnosticEvent(action, details);
}

void OverlaySession::replaceLayer(const EditorAnnotation& layer) {
    auto& layers = document.state.annotations;
    for (std::size_t index = 0; index < layers.size(); ++index) {
        if (layers[index].id != layer.id)
            continue;
        const Rect before = layers[index].paintedBounds();
        layers[index] = layer;
        layerChanged(index, before);
        layerChanged(index, layer.paintedBounds());
    }
}

void OverlaySession::layerChanged(std::size_t index, const Rect& area) {
    damage.add(area);
    damageEffectsAbove(index, area);
}

void OverlaySession::allLayersChanged() {
    damage.add(document.selection);
}

void OverlaySession::setSelection(const Rect& selection) {
    const Rect before = std::exchange(document.selection, selection);
    // A layer that was and stays wholly inside looks the same to the effects above it.
    const std::optional<Rect> shared = before.intersection(selection);
    const auto& layers = document.state.annotations;
    for (std::size_t index = 0; index < layers.size(); ++index) {
        const Rect area = layers[index].paintedBounds();
        if (!shared || !shared->contains(area))
            damageEffectsAbove(index, area);
    }
}

void OverlaySession::finishGesture() {
    if (document.pendingChange)
        document.history.record(*document.pendingChange, document.state);
    document.pendingChange.reset();
    document.drag.reset();
}

// Pixels that an effect reads: its own area and the margin that it pulls colour in from.
Rect OverlaySession::effectArea(const EditorAnnotation& effect) const {
    constexpr double blurMarginPixels = 36;
    const double pointsPerPixel = document.viewSize.width / std::max(1, document.image.width());
    const double blurMargin = blurMarginPixels * pointsPerPixel;
    return effect.paintedBounds().insetBy(-std::max(blurMargin, effect.width) - pointsPerPixel);
}

void OverlaySession::damageEffectsAbove(std::size_t index, Rect area) {
    const auto& layers = document.state.annotations;
    for (std::size_t above = index + 1; above < layers.size(); ++above) {
        const EditorAnnotation& effect = layers[above];
        if (!AnnotationTools::isEffect(effect.tool) || !effectArea(effect).intersects(area))
            continue;
        damage.add(effect.paintedBounds());
        area = area.united(effect.paintedBounds());
    }
}

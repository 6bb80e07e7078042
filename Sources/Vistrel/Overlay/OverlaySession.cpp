#include "Overlay/OverlaySession.h"

#include <algorithm>
#include <span>

using Diagnostic::Action;

namespace {

std::optional<Action> reportAtEnd(const Drag& drag) {
    struct Name {
        std::optional<Action> operator()(const Creation& creation) const {
            return creation.valid ? std::optional(Action::selectionCreated) : std::nullopt;
        }
        std::optional<Action> operator()(const MoveSelection&) const { return Action::selectionMoved; }
        std::optional<Action> operator()(const ResizeSelection&) const { return Action::selectionResized; }
        std::optional<Action> operator()(const MoveAnnotation&) const { return Action::layerMoved; }
        std::optional<Action> operator()(const ResizeAnnotation&) const { return Action::layerResized; }
        std::optional<Action> operator()(const DragEndpoint&) const { return Action::layerResized; }
        std::optional<Action> operator()(const Annotate&) const { return Action::layerCreated; }
    };
    return std::visit(Name(), drag);
}

} // namespace

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
    damageEffectsFrom(index + 1, area);
}

void OverlaySession::layersChanged(const std::vector<EditorAnnotation>& before) {
    const auto& after = document.state.annotations;
    const auto [firstBefore, firstAfter] = std::ranges::mismatch(before, after);
    auto lastBefore = before.end();
    auto lastAfter = after.end();
    while (lastBefore != firstBefore && lastAfter != firstAfter && *(lastBefore - 1) == *(lastAfter - 1)) {
        --lastBefore;
        --lastAfter;
    }
    const auto lowest = static_cast<std::size_t>(firstAfter - after.begin());
    using Layers = std::span<const EditorAnnotation>;
    for (const Layers changed : {Layers(firstBefore, lastBefore), Layers(firstAfter, lastAfter)}) {
        for (const EditorAnnotation& layer : changed) {
            damage.add(layer.paintedBounds());
            damageEffectsFrom(lowest, layer.paintedBounds());
        }
    }
}

void OverlaySession::setSelection(const Rect& selection) {
    const Rect before = std::exchange(document.selection, selection);
    // A layer that was and stays wholly inside looks the same to the effects above it.
    const std::optional<Rect> shared = before.intersection(selection);
    const auto& layers = document.state.annotations;
    for (std::size_t index = 0; index < layers.size(); ++index) {
        const Rect area = layers[index].paintedBounds();
        if (!shared || !shared->contains(area))
            damageEffectsFrom(index + 1, area);
    }
}

void OverlaySession::finishGesture() {
    if (document.pendingChange)
        document.history.record(*document.pendingChange, document.state);
    document.pendingChange.reset();
    document.drag.reset();
}

void OverlaySession::completeGesture() {
    if (!document.drag)
        return;
    const std::optional<Action> action = reportAtEnd(*document.drag);
    if (action == Action::selectionCreated) {
        document.history.clear();
        hooks.onSelection();
    }
    if (action)
        report(*action);
    finishGesture();
}

// Pixels that an effect reads: its own area and the margin that it pulls colour in from.
Rect OverlaySession::effectArea(const EditorAnnotation& effect) const {
    constexpr double blurMarginPixels = 36;
    const double pointsPerPixel = document.viewSize.width / std::max(1, document.image.width());
    const double blurMargin = blurMarginPixels * pointsPerPixel;
    return effect.paintedBounds().insetBy(-std::max(blurMargin, effect.width) - pointsPerPixel);
}

void OverlaySession::damageEffectsFrom(std::size_t lowest, Rect area) {
    const auto& layers = document.state.annotations;
    for (std::size_t index = lowest; index < layers.size(); ++index) {
        const EditorAnnotation& effect = layers[index];
        if (!AnnotationTools::isEffect(effect.tool) || !effectArea(effect).intersects(area))
            continue;
        damage.add(effect.paintedBounds());
        area = area.united(effect.paintedBounds());
    }
}

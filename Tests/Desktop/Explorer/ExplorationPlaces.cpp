#include "Desktop/Explorer/Exploration.h"

#include "Annotations/ViewFlip.h"
#include "Overlay/OverlayHitTest.h"

#include <algorithm>
#include <numeric>

// Where a step goes, given what the rules say is on the screen now.

namespace {

/// How near to a panel's edge a press is nobody's to say: panels are rounded to whole points.
constexpr double doubt = 3;

template<class List>
const auto& chosen(const List& list, double fraction) {
    return list[std::min(std::size_t(fraction * double(list.size())), list.size() - 1)];
}

QPointF within(const QRectF& area, double x, double y) {
    return {area.left() + x * area.width(), area.top() + y * area.height()};
}

} // namespace

QPoint Exploration::resolve(const Step& step) const {
    auto& all = const_cast<Rules&>(rules);
    std::size_t index = rules.displayAt(rules.pointer);
    for (std::size_t other = 0; other < rules.displayCount(); ++other)
        if (all.display(other).document().hasSelection())
            index = other;
    if (step.what == Step::otherDisplay)
        index = (index + 1) % rules.displayCount();
    const RuledDisplay& on = all.display(index);
    const QPoint place = placeOn(on, step).value_or(
        on.toRoot(within({{}, QSizeF(on.size().width, on.size().height)}, step.x, step.y)));
    const QPoint last(on.rect.right(), on.rect.bottom());
    const QPoint held(std::clamp(place.x(), on.rect.left(), last.x()),
                      std::clamp(place.y(), on.rect.top(), last.y()));
    // Only whole points reach the program from every display.
    int grid = 1;
    for (std::size_t one = 0; one < rules.displayCount(); ++one) {
        const double scale = all.display(one).scale;
        grid = std::lcm(grid, scale == 1.25 ? 5 : scale == 1.5 ? 3 : scale == 2 ? 2 : 1);
    }
    const QPoint coarse(held.x() / grid * grid, std::max(held.y() / grid * grid, grid));
    return rules.hasGesture() ? coarse : sure(coarse);
}

std::optional<QPoint> Exploration::placeOn(const RuledDisplay& on, const Step& step) const {
    const ViewFlip flip{on.size().height};
    const OverlayDocument& document = on.document();
    const QRectF selection = flip.toWidget(document.selection);
    const QPointF wobble((step.y - 0.5) * 18, (0.5 - step.x) * 18);
    const auto& layers = document.state.annotations;
    switch (Step::Place(step.what)) {
    case Step::inside:
        if (!document.hasSelection())
            break;
        return on.toRoot(within(selection, step.x, step.y));
    case Step::outside: {
        if (!document.hasSelection())
            break;
        const bool left = step.x < 0.5 && selection.left() > 20;
        return on.toRoot(
            QPointF(left ? step.x * 2 * selection.left()
                         : selection.right() + (step.x - 0.5) * 2 * (on.size().width - selection.right()),
                    step.y * on.size().height));
    }
    case Step::handle:
        if (document.hasSelection())
            return on.toRoot(
                flip.toWidget(OverlayHitTest::selectionHandle(document.selection, int(step.x * 8))) + wobble);
        break;
    case Step::layer:
        if (!layers.empty())
            return on.toRoot(flip.toWidget(chosen(chosen(layers, step.x).points, step.y)));
        break;
    case Step::layerHandle:
        if (const EditorAnnotation* selected = document.state.selected())
            return on.toRoot(flip.toWidget(chosen(OverlayHitTest::layerHandles(*selected), step.x)) +
                             wobble / 3);
        break;
    case Step::control:
        if (on.showsPanels()) {
            const PanelPlaces places = on.places();
            return on.toRoot(step.x >= 0.999 ? places.center(PanelControl::sizeField)
                                             : chosen(places.controls(), step.x).area.center());
        }
        break;
    case Step::edge:
        return on.rect.topLeft() + QPoint(int(step.x * 3) * (on.rect.width() - 1) / 2,
                                          int(step.y * 3) * (on.rect.height() - 1) / 2);
    case Step::text:
        if (on.textView)
            return on.toRoot(on.textArea().center());
        break;
    case Step::anywhere:
    case Step::otherDisplay:
        break;
    }
    return std::nullopt;
}

// A press lands in the middle of a control, or clear of every panel and of the text being typed.
QPoint Exploration::sure(QPoint position) const {
    auto& all = const_cast<Rules&>(rules);
    const RuledDisplay& on = all.display(rules.displayAt(position));
    const QPointF p = on.toPoints(position);
    const QRectF text = on.textArea();
    if (text.adjusted(-doubt, -doubt, doubt, doubt).contains(p))
        return on.toRoot(text.center());
    if (!on.showsPanels())
        return position;
    const PanelPlaces places = on.places();
    const bool near = std::ranges::any_of(places.panels(), [&](const QRectF& panel) {
        return panel.adjusted(-doubt, -doubt, doubt, doubt).contains(p);
    });
    if (!near)
        return position;
    std::vector<PanelControl> usable;
    const bool scrolls = on.document().state.annotations.size() > 5;
    std::ranges::copy_if(places.controls(), std::back_inserter(usable), [&](const PanelControl& control) {
        return !(scrolls && control.kind >= PanelControl::rowIcon) &&
               !(on.fieldHasFocus && control.kind == PanelControl::sizeField);
    });
    const auto nearest = std::ranges::min_element(usable, {}, [&](const PanelControl& control) {
        return (control.area.center() - p).manhattanLength();
    });
    return on.toRoot(nearest->area.center());
}

#include "Editor/EditorSizeControls.h"

#include "Editor/DevicePixels.h"
#include "Editor/EditorSizeField.h"
#include "Editor/EditorStepButton.h"

#include "VistrelPlatform/Result.h"

namespace {
constexpr double designStepWidth = 21.6;
constexpr double minimumStepWidth = 12;
constexpr double designDigits = 15.6;
constexpr double designRadius = 6;
} // namespace

EditorSizeControls::EditorSizeControls(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("sizeControls"));
    setAccessibleName(QStringLiteral("Size"));
}

double EditorSizeControls::stepWidth(double scale, double stripWidth) {
    return std::min(std::max(scale * designStepWidth, minimumStepWidth), stripWidth / 2);
}

double EditorSizeControls::digitSize(double scale) {
    return std::max(scale * designDigits, minimumDigits);
}

void EditorSizeControls::insertArrangedSubview(QWidget& view, int index) {
    VISTREL_PRECONDITION(index >= 0 && index <= int(items.size()), "index out of range");
    items.insert(items.begin() + index, &view);
    view.setParent(this);
    view.lower();
    view.show();
    layoutItems();
}

void EditorSizeControls::setMagnification(double magnification) {
    if (scale == magnification)
        return;
    scale = magnification;
    layoutItems();
}

void EditorSizeControls::resizeEvent(QResizeEvent*) {
    layoutItems();
}

void EditorSizeControls::layoutItems() {
    const double step = stepWidth(scale, width());
    bool first = true;
    for (QWidget* item : items) {
        if (auto* field = qobject_cast<EditorSizeField*>(item)) {
            field->setGeometry(rect());
            field->setDigits(digitSize(scale), step);
            field->setCornerRadius(designRadius * scale);
        } else if (auto* button = qobject_cast<EditorStepButton*>(item)) {
            const double x = first ? 0 : width() - step;
            first = false;
            button->setHoverRadius(designRadius * scale);
            button->setGeometry(DevicePixels::roundedEdges({x, 0, step, double(height())}));
        }
    }
}

#include "Editor/EditorActionBar.h"

#include "Editor/DevicePixels.h"
#include "Editor/EditorAccessibility.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorColors.h"
#include "Editor/EditorPanel.h"

#include <QEvent>

namespace {

constexpr double barRadius = 6;
constexpr double barTitleSize = 18.2;
constexpr double titledMinimum = 86;
constexpr double iconItem = 42;
constexpr double otherItem = 32;

double preferredItemWidth(const QWidget& item) {
    const auto* button = qobject_cast<const EditorButton*>(&item);
    if (!button)
        return otherItem;
    return button->text().isEmpty() ? iconItem : std::max(button->naturalWidth() + 4, titledMinimum);
}

/// A hairline in the middle of a widget a few points wide: exactly one device pixel at any scale.
class ActionSeparator : public QWidget {
public:
    static constexpr int reach = 2;

    explicit ActionSeparator(QWidget* bar) : QWidget(bar) {
        setObjectName(QStringLiteral("action-separator"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const double line = DevicePixels::one(painter);
        const QPointF left = DevicePixels::aligned(painter, QPointF(width() / 2.0 - line / 2, 0));
        QColor color = EditorColors::ink();
        color.setAlphaF(0.3F);
        painter.fillRect(QRectF(left.x(), 0, line, height()), color);
    }
};

} // namespace

EditorActionBar::EditorActionBar(QWidget* parent) : QWidget(parent) {
    EditorAccessibility::install();
    setObjectName(QStringLiteral("actionBar"));
    setAccessibleName(QStringLiteral("Actions"));
    setPalette(EditorColors::palette());
    setCursor(Qt::ArrowCursor);
}

void EditorActionBar::addArrangedSubview(QWidget& view) {
    if (auto* button = qobject_cast<EditorButton*>(&view)) {
        button->setTitleSize(barTitleSize);
        button->setMagnification(scale);
        button->setHoverRadius(barRadius * scale);
    }
    QWidget* previous = items.empty() ? nullptr : items.back();
    items.push_back(&view);
    view.setParent(this);
    view.show();
    if (previous) {
        setTabOrder(previous, &view);
        separators.push_back(new ActionSeparator(this));
        separators.back()->show();
    }
    for (QWidget* separator : separators)
        separator->raise();
    layoutItems();
}

double EditorActionBar::preferredWidth() const {
    double width = 0;
    for (const QWidget* item : items)
        width += preferredItemWidth(*item);
    return width;
}

void EditorActionBar::place(const QRectF& frame, double magnification) {
    if (scale != magnification) {
        scale = magnification;
        for (QWidget* item : items) {
            if (auto* button = qobject_cast<EditorButton*>(item)) {
                button->setMagnification(scale);
                button->setHoverRadius(barRadius * scale);
            }
        }
        update();
    }
    if (const QRect place = DevicePixels::rounded(frame); geometry() != place) {
        EditorButton::dismissHints(*this);
        setGeometry(place);
    }
    layoutItems();
}

void EditorActionBar::layoutItems() {
    const double factor = width() / std::max(preferredWidth(), 1.0);
    double x = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const double itemWidth = preferredItemWidth(*items[i]) * factor;
        items[i]->setGeometry(DevicePixels::roundedEdges({x, 0, itemWidth, double(height())}));
        x += itemWidth;
        if (i < separators.size())
            separators[i]->setGeometry(qRound(x) - ActionSeparator::reach, qRound(height() * 0.25),
                                       2 * ActionSeparator::reach, qRound(height() * 0.5));
    }
}

bool EditorActionBar::event(QEvent* event) {
    return EditorPanel::swallow(*event) || QWidget::event(event);
}

void EditorActionBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(EditorColors::background());
    painter.drawRoundedRect(DevicePixels::aligned(painter, QRectF(rect())), barRadius * scale,
                            barRadius * scale);
}

void EditorActionBar::resizeEvent(QResizeEvent*) {
    layoutItems();
}

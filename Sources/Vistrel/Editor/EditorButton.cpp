#include "Editor/EditorButton.h"

#include "Editor/DevicePixels.h"
#include "Editor/EditorAccessibility.h"
#include "Editor/EditorColors.h"
#include "Editor/EditorFont.h"
#include "Editor/EditorHint.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace {
constexpr double titlePadding = 8;
constexpr double iconTitleGap = 4;
constexpr double disabledStrength = 0.4;
} // namespace

EditorButton::EditorButton(QWidget* parent) : QPushButton(parent), bubble(new EditorHint(*this)) {
    EditorAccessibility::install();
    setFlat(true);
    setAutoDefault(false);
    setFocusPolicy(Qt::TabFocus);
    setPalette(EditorColors::palette());
    setFont(EditorFont::system(titleSize));
    connect(this, &QAbstractButton::clicked, this, [this] {
        if (onAction)
            onAction();
    });
}

bool EditorButton::isHovered() const {
    return bubble->isHovered();
}

void EditorButton::setIconImage(const QString& name, const QString& symbol, double size) {
    if (iconName == name && iconSymbol == symbol && iconSize == size)
        return;
    iconName = name;
    iconSymbol = symbol;
    iconSize = size;
    update();
}

void EditorButton::setMagnification(double magnification) {
    if (scale == magnification)
        return;
    scale = magnification;
    setFont(EditorFont::system(titleSize * scale));
    update();
}

void EditorButton::setTitleSize(double points) {
    titleSize = points;
    setFont(EditorFont::system(titleSize * scale));
}

void EditorButton::setHoverRadius(double points) {
    if (radius == points)
        return;
    radius = points;
    update();
}

void EditorButton::setHighlighted(bool highlighted) {
    setHighlightable(true);
    setChecked(highlighted);
}

double EditorButton::naturalWidth() const {
    const double iconWidth = hasIconImage() ? iconSize : 0;
    if (text().isEmpty())
        return iconWidth;
    const double textWidth =
        std::ceil(QFontMetricsF(EditorFont::system(titleSize)).horizontalAdvance(text()));
    return titlePadding + (hasIconImage() ? iconWidth + iconTitleGap : 0) + textWidth + titlePadding;
}

QSize EditorButton::sizeHint() const {
    return (QSizeF(naturalWidth(), std::max(iconSize, titleSize * 1.5)) * scale).toSize();
}

void EditorButton::dismissHints(QWidget& root) {
    EditorHint::dismissAll(root);
}

bool EditorButton::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        // Whatever the button does with it, the canvas below must not get it.
        if (isEnabled())
            QPushButton::event(event);
        event->accept();
        return true;
    default:
        return QPushButton::event(event);
    }
}

void EditorButton::mousePressEvent(QMouseEvent* event) {
    if (!firesOnPress) {
        QPushButton::mousePressEvent(event);
        return;
    }
    if (event->button() == Qt::LeftButton && onAction)
        onAction();
}

void EditorButton::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && event->modifiers() == 0) {
        if (!event->isAutoRepeat())
            click();
        return;
    }
    QPushButton::keyPressEvent(event);
}

void EditorButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (isHighlighted()) {
        QColor wash = EditorColors::accent();
        wash.setAlphaF(0.22F);
        painter.setBrush(wash);
        painter.drawRoundedRect(rect(), radius, radius);
    }
    painter.save();
    paintContent(painter);
    painter.restore();
    if (isEnabled() && isHovered()) {
        painter.setBrush(QColor(0, 0, 0, isDown() ? 46 : 26));
        painter.drawRoundedRect(rect(), radius, radius);
    }
    if (hasFocus())
        paintFocusRing(painter, rect(), radius);
}

void EditorButton::paintFocusRing(QPainter& painter, const QRectF& bounds, double radius) {
    constexpr double width = 2;
    QColor ring = EditorColors::accent();
    ring.setAlphaF(0.85F);
    painter.setPen(QPen(ring, width));
    painter.setBrush(Qt::NoBrush);
    const double inset = width / 2 + 1;
    painter.drawRoundedRect(bounds.adjusted(inset, inset, -inset, -inset), std::max(radius - inset, 1.0),
                            std::max(radius - inset, 1.0));
}

void EditorButton::paintContent(QPainter& painter) {
    if (!isEnabled())
        painter.setOpacity(disabledStrength);
    const QColor ink = EditorColors::ink();
    const auto icon = hasIconImage() ? EditorIcons::image(iconName, iconSymbol, iconSize * scale,
                                                          DevicePixels::ratio(painter))
                                     : std::nullopt;
    QPointF center = QRectF(rect()).center();
    if (text().isEmpty()) {
        if (icon)
            icon->paint(painter, center, ink);
        return;
    }
    painter.setFont(font());
    painter.setPen(ink);
    QRectF textRect = rect();
    if (icon) {
        const double textWidth = QFontMetricsF(font()).horizontalAdvance(text());
        const double left = (width() - (icon->size + iconTitleGap * scale + textWidth)) / 2;
        center.setX(left + icon->size / 2);
        icon->paint(painter, center, ink);
        textRect.setLeft(left + icon->size + iconTitleGap * scale);
        painter.drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter, text());
    } else {
        painter.drawText(textRect, Qt::AlignCenter, text());
    }
}

#include "Settings/Windows/SettingsTabBar.h"

#include "Settings/Windows/PageView.h"

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int symbolSize = 20;
constexpr int radius = 6;
constexpr int leastWidth = 88;

QColor washed(QColor color, double share) {
    color.setAlphaF(static_cast<float>(share));
    return color;
}

} // namespace

SettingsTabBar::SettingsTabBar(QWidget* parent) : QTabBar(parent) {
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

void SettingsTabBar::addSymbolTab(SettingsSymbols::Symbol symbol, const QString& label) {
    symbols.push_back(symbol);
    addTab(label);
}

QSize SettingsTabBar::tabSizeHint(int index) const {
    const int text = fontMetrics().horizontalAdvance(withoutMnemonic(tabText(index)));
    return {std::max(leastWidth, text + 3 * PageStyle::grid),
            symbolSize + fontMetrics().height() + 2 * PageStyle::grid + PageStyle::grid / 2};
}

void SettingsTabBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor accent = palette().color(QPalette::Highlight);
    const QColor text = palette().color(QPalette::WindowText);
    for (int index = 0; index < count(); ++index) {
        const QRectF tab = QRectF(tabRect(index)).adjusted(2.5, 2.5, -2.5, -2.5);
        const bool current = index == currentIndex();
        painter.setPen(Qt::NoPen);
        if (current)
            painter.setBrush(washed(accent, PageStyle::isDark(palette()) ? 0.28 : 0.16));
        else
            painter.setBrush(index == hovered ? washed(text, 0.06) : QColor(Qt::transparent));
        painter.drawRoundedRect(tab, radius, radius);
        if (current && hasFocus() && showsFocus) {
            painter.setPen(QPen(accent, 2));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(tab, radius, radius);
        }
        const QColor ink = current ? text : PageStyle::secondaryColor(palette());
        const QRectF symbol(tab.center().x() - symbolSize / 2.0, tab.top() + PageStyle::grid - 2.5,
                            symbolSize, symbolSize);
        SettingsSymbols::paint(painter, symbols[static_cast<std::size_t>(index)], symbol, ink);
        painter.setPen(ink);
        painter.drawText(QRectF(tab.left(), symbol.bottom(), tab.width(), tab.bottom() - symbol.bottom()),
                         Qt::AlignCenter | Qt::TextShowMnemonic, tabText(index));
    }
}

void SettingsTabBar::focusInEvent(QFocusEvent* event) {
    const Qt::FocusReason reason = event->reason();
    showsFocus = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
    QTabBar::focusInEvent(event);
}

void SettingsTabBar::keyPressEvent(QKeyEvent* event) {
    showsFocus = true;
    QTabBar::keyPressEvent(event);
}

void SettingsTabBar::mouseMoveEvent(QMouseEvent* event) {
    QTabBar::mouseMoveEvent(event);
    const int under = tabAt(event->position().toPoint());
    if (std::exchange(hovered, under) != under)
        update();
}

void SettingsTabBar::leaveEvent(QEvent* event) {
    QTabBar::leaveEvent(event);
    hovered = -1;
    update();
}

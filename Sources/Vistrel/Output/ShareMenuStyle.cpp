#include "Output/ShareMenuStyle.h"

#include <QMenu>

void ShareMenuStyle::apply(QMenu& menu) {
    auto* style = new ShareMenuStyle;
    style->setParent(&menu);
    menu.setStyle(style);
}

int ShareMenuStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    return metric == PM_SmallIconSize ? iconSize.width() : QProxyStyle::pixelMetric(metric, option, widget);
}

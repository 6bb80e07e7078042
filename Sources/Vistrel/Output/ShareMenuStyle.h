#pragma once

#include <QProxyStyle>

class QMenu;

/// Gives the share menu icons of the size application icons are drawn for. Main thread; points.
class ShareMenuStyle : public QProxyStyle {
public:
    static constexpr QSize iconSize{18, 18};

    static void apply(QMenu& menu);

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
};

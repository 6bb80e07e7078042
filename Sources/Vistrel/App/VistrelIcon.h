#pragma once

#include "VistrelPlatform/Result.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QRectF>
#include <QString>

class QPainter;

/// The program's one glyph, a viewfinder: four corner brackets, a ring and a dot.
namespace VistrelIcon {

/// All lengths are fractions of the rectangle's height, which is meant to be its width too.
void draw(QPainter& painter, const QRectF& rect, const QColor& color);

/// The glyph in the centred square of the shorter side, at `devicePixelRatio` pixels per point.
QImage image(const QSizeF& points, qreal devicePixelRatio = 1, const QColor& color = Qt::black);

/// The same, drawn anew for every size that is asked for.
QIcon icon(const QColor& color = Qt::black);

/// Ten PNG files, "icon_16x16.png" to "icon_512x512@2x.png". Stops at the first failure and leaves what
/// is written.
Result<void> exportIconset(const QString& directory);

} // namespace VistrelIcon

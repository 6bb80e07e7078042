#pragma once

#include "VistrelCore/Geometry.h"

#include <QFont>
#include <QString>

class QPainter;

/// The text of a badge in the system font with digits of equal width, so that a badge does not tremble
/// while its numbers change. Points.
class BadgeText {
public:
    BadgeText();

    Size size(const QString& text) const;
    /// Draws from the top-left corner of the text's box; the painter's units are points, y down.
    void draw(QPainter& painter, QPointF topLeft, const QString& text) const;

private:
    double advance(QChar character) const;

    QFont font;
    double digitWidth = 0;
};

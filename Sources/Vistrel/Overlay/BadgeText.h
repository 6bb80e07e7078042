#pragma once

#include "VistrelCore/Geometry.h"

#include <QFont>
#include <QString>

#include <optional>

class QPainter;

/// The text of a badge in the system font with digits of equal width, so that a badge does not tremble
/// while its numbers change. Points.
class BadgeText {
public:
    /// Reads the list of the system's fonts, which takes as long as the rest of a start. On any thread,
    /// once there is an application; the first text does it otherwise.
    static void loadSystemFonts();
    /// Finds the font now, rather than with the first text.
    void prepare() const { face(); }

    Size size(const QString& text) const;
    /// Draws from the top-left corner of the text's box; the painter's units are points, y down.
    void draw(QPainter& painter, QPointF topLeft, const QString& text) const;

private:
    struct Face {
        QFont font;
        double digitWidth;

        double advance(QChar character) const;
    };
    const Face& face() const;

    mutable std::optional<Face> found;
};

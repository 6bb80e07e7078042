#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>

/// The pixel filters behind blur and pixelate. Any thread. Everything is in whole pixels of one picture,
/// counted from its top left corner; results are opaque.
namespace EffectFilters {

/// A part of a picture: the pixel (0, 0) of `pixels` (32 bits each) is the picture's pixel `origin`.
struct Source {
    const QImage& pixels;
    QPoint origin;
    QSize pictureSize;

    /// The area of the picture that is at hand.
    QRect area() const { return {origin, pixels.size()}; }
};

/// The standard deviation of the blur.
inline constexpr int blurSigma = 12;
/// The blur of an area reads this many pixels around it, as far as the picture goes.
inline constexpr int blurReach = 72;

/// The Gaussian blur of `area`, as if the picture's edge pixels went on outside it for ever. The result
/// for a pixel does not depend on how the picture is cut into areas.
QImage blur(const Source& source, const QRect& area);
/// The same on one thread.
QImage blurOnOneThread(const Source& source, const QRect& area);

/// Squares in columns from the picture's left edge and in rows from its bottom edge, where the view has
/// its origin: the topmost row may be cut. Where `edge` is no whole number the squares' borders lie on the
/// nearest pixel borders.
struct Blocks {
    double edge = 1;
    int pictureHeight = 0;

    /// Blocks of this many pixels; less than one, and what misses a whole number by rounding, is mended.
    static Blocks ofEdge(double pixels, int pictureHeight);
    int left(int column) const;
    int columnAt(int x) const;
    /// Rows count downwards; row 0 is the topmost that the picture shows. The top may lie above the picture.
    int top(int row) const;
    int rowAt(int y) const;
    /// The area grown until it holds whole blocks.
    QRect whole(const QRect& area) const;

    friend bool operator==(const Blocks&, const Blocks&) = default;

private:
    int rows() const;
};

/// Every block of `area` (which holds whole blocks, or ends with the picture) in its mean colour.
QImage pixelate(const Source& source, const QRect& area, Blocks blocks);

} // namespace EffectFilters

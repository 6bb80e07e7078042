#pragma once

#include <QImage>
#include <QPixmap>
#include <QString>

#include <optional>

class QColor;
class QPainter;

/// One icon: its sharpest picture, and the size in points at which it is shown.
struct EditorIcon {
    QImage image;
    /// Only the shape counts; the control that shows it gives the colour.
    bool isTemplate = true;
    double size = 0;

    /// The icon at exactly its size for this device pixel ratio, tinted when it is a template.
    QPixmap pixmap(const QColor& tint, double devicePixelRatio) const;
    /// Paints it centred on a point of the painter's widget, on whole device pixels.
    void paint(QPainter& painter, QPointF center, const QColor& tint) const;
};

/// The editor's icons: our own picture files first, the desktop's icon theme where there is none.
/// Cached for the life of the program. Main thread.
namespace EditorIcons {

/// `size` in points. The picture is chosen for size × ratio pixels: 256 above 64, 128 above 32, else 64.
std::optional<EditorIcon> image(const QString& name, const QString& symbol, double size,
                                double devicePixelRatio = 1);
/// The edge in pixels of the picture that serves a size.
int variant(double pixels);

} // namespace EditorIcons

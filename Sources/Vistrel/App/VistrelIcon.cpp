#include "App/VistrelIcon.h"

#include "Capture/CaptureError.h"
#include "Output/ImageEncoder.h"
#include "VistrelPlatform/System/AtomicFile.h"
#include "VistrelPlatform/System/Files.h"

#include <QDir>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

namespace {

void drawCentred(QPainter& painter, const QRectF& rect, const QColor& color) {
    const qreal side = std::min(rect.width(), rect.height());
    QRectF square(0, 0, side, side);
    square.moveCenter(rect.center());
    const qreal inset = 0.048 * side;
    VistrelIcon::draw(painter, square.adjusted(inset, inset, -inset, -inset), color);
}

QPainterPath brackets(const QRectF& rect) {
    const qreal arm = 0.28 * rect.height();
    QPainterPath path;
    for (const bool right : {false, true}) {
        for (const bool top : {false, true}) {
            const QPointF corner(right ? rect.right() : rect.left(), top ? rect.top() : rect.bottom());
            path.moveTo(corner + QPointF(0, top ? arm : -arm));
            path.lineTo(corner);
            path.lineTo(corner + QPointF(right ? -arm : arm, 0));
        }
    }
    return path;
}

class GlyphEngine : public QIconEngine {
public:
    explicit GlyphEngine(const QColor& glyphColor) : color(glyphColor) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        if (mode == QIcon::Disabled)
            painter->setOpacity(painter->opacity() * 0.5);
        drawCentred(*painter, rect, color);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, picture.rect(), mode, state);
        return picture;
    }
    QIconEngine* clone() const override { return new GlyphEngine(*this); }
    QString key() const override { return QStringLiteral("vistrel-glyph"); }

private:
    QColor color;
};

/// The application icon: the glyph on a light tile.
QImage applicationIcon(int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal p = pixels;
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgbF(0.92F, 0.96F, 1.0F));
    painter.drawRoundedRect(QRectF(0, 0, p, p).adjusted(0.06 * p, 0.06 * p, -0.06 * p, -0.06 * p), 0.19 * p,
                            0.19 * p);
    VistrelIcon::draw(painter, QRectF(0.25 * p, 0.25 * p, 0.5 * p, 0.5 * p),
                      QColor::fromRgbF(0.1F, 0.34F, 0.82F));
    return image;
}

} // namespace

void VistrelIcon::draw(QPainter& painter, const QRectF& rect, const QColor& color) {
    const qreal height = rect.height();
    const qreal line = 0.095 * height;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, line, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(brackets(rect));
    painter.setPen(QPen(color, line * 0.85));
    const qreal ringRadius = 0.32 * height;
    painter.drawEllipse(rect.center(), ringRadius, ringRadius);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    const qreal dotRadius = 0.08 * height;
    painter.drawEllipse(rect.center() + QPointF(0.33 * height, -0.33 * height), dotRadius, dotRadius);
    painter.restore();
}

QImage VistrelIcon::image(const QSizeF& points, qreal devicePixelRatio, const QColor& color) {
    QImage image((points * devicePixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawCentred(painter, QRectF(QPointF(), points), color);
    return image;
}

QIcon VistrelIcon::icon(const QColor& color) {
    return QIcon(new GlyphEngine(color));
}

Result<void> VistrelIcon::exportIconset(const QString& directory) {
    if (Result<void> created = Files::createFolder(directory, 0777); !created)
        return created;
    for (const int size : {16, 32, 128, 256, 512}) {
        for (const int scale : {1, 2}) {
            const auto png = ImageEncoder::encode(ScreenshotSaveFormat::png, applicationIcon(size * scale));
            if (!png)
                return tl::unexpected(captureError(CaptureError::encode));
            const QString name = QStringLiteral("icon_%1x%1%2.png")
                                     .arg(size)
                                     .arg(scale == 2 ? QStringLiteral("@2x") : QString());
            if (Result<void> written = writeAtomically(QDir(directory).filePath(name), *png); !written)
                return written;
        }
    }
    return {};
}

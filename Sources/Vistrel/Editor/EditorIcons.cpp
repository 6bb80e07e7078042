#include "Editor/EditorIcons.h"

#include "Editor/DevicePixels.h"

#include <QCoreApplication>
#include <QHash>
#include <QIcon>
#include <QPixmapCache>

namespace {

/// The icon theme's nearest names for a system symbol, best first.
QStringList themeNames(const QString& symbol) {
    static const QHash<QString, QStringList> names = {
        {QStringLiteral("cursorarrow"), {QStringLiteral("edit-select"), QStringLiteral("object-select")}},
        {QStringLiteral("pencil.tip"), {QStringLiteral("draw-freehand"), QStringLiteral("document-edit")}},
        {QStringLiteral("line.diagonal"), {QStringLiteral("draw-line")}},
        {QStringLiteral("arrow.up.right"), {QStringLiteral("draw-arrow-forward"), QStringLiteral("go-next")}},
        {QStringLiteral("rectangle"), {QStringLiteral("draw-rectangle")}},
        {QStringLiteral("oval"), {QStringLiteral("draw-ellipse")}},
        {QStringLiteral("highlighter"),
         {QStringLiteral("draw-highlight"), QStringLiteral("format-text-highlight")}},
        {QStringLiteral("drop.halffull"), {QStringLiteral("blurfx"), QStringLiteral("blurimage")}},
        {QStringLiteral("square.grid.3x3.fill"),
         {QStringLiteral("pixelart-trace"), QStringLiteral("view-grid")}},
        {QStringLiteral("textformat"), {QStringLiteral("draw-text"), QStringLiteral("insert-text")}},
        {QStringLiteral("arrow.uturn.backward"), {QStringLiteral("edit-undo")}},
        {QStringLiteral("arrow.uturn.forward"), {QStringLiteral("edit-redo")}},
        {QStringLiteral("trash"), {QStringLiteral("edit-delete"), QStringLiteral("user-trash")}},
        {QStringLiteral("record.circle"), {QStringLiteral("media-record")}},
        {QStringLiteral("square.and.arrow.up"),
         {QStringLiteral("document-share"), QStringLiteral("document-send")}},
        {QStringLiteral("square.and.arrow.down"), {QStringLiteral("document-save")}},
        {QStringLiteral("doc.on.doc"), {QStringLiteral("edit-copy")}},
        {QStringLiteral("camera"), {QStringLiteral("camera-photo")}},
        {QStringLiteral("gearshape"), {QStringLiteral("preferences-system"), QStringLiteral("configure")}},
        {QStringLiteral("power"), {QStringLiteral("system-shutdown"), QStringLiteral("application-exit")}},
    };
    return names.value(symbol);
}

/// Folders with one subfolder per picture size: beside the installed program, then the source tree's.
const QStringList& folders() {
    static const QStringList list = {
        QCoreApplication::applicationDirPath() + QStringLiteral("/../share/vistrel/EditorIcons/"),
#ifdef VISTREL_SOURCE_RESOURCES
        QStringLiteral(VISTREL_SOURCE_RESOURCES "/EditorIcons/"),
#endif
    };
    return list;
}

QImage loadFile(const QString& name, int variant) {
    for (const QString& folder : folders()) {
        QImage image(folder + QString::number(variant) + QLatin1Char('/') + name + QStringLiteral(".png"));
        if (!image.isNull())
            return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }
    return {};
}

QImage loadThemeIcon(const QString& symbol, int variant) {
    for (const QString& theme : themeNames(symbol)) {
        for (const QString& candidate : {theme + QStringLiteral("-symbolic"), theme}) {
            // Without a size the pixmap would be as small as the theme's largest file.
            const QPixmap pixmap = QIcon::fromTheme(candidate).pixmap(QSize(variant, variant), 1);
            if (!pixmap.isNull())
                return pixmap.toImage()
                    .convertToFormat(QImage::Format_ARGB32_Premultiplied)
                    .scaled(variant, variant, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        }
    }
    return {};
}

} // namespace

QPixmap EditorIcon::pixmap(const QColor& tint, double devicePixelRatio) const {
    const int pixels = qRound(size * devicePixelRatio);
    if (pixels <= 0 || image.isNull())
        return {};
    const QString key = QStringLiteral("editor-icon-%1-%2-%3")
                            .arg(image.cacheKey())
                            .arg(pixels)
                            .arg(isTemplate ? tint.rgba() : 0U);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        QImage scaled = image.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                            .convertToFormat(QImage::Format_ARGB32_Premultiplied);
        if (isTemplate) {
            QPainter painter(&scaled);
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            painter.fillRect(scaled.rect(), tint);
        }
        pixmap = QPixmap::fromImage(scaled);
        QPixmapCache::insert(key, pixmap);
    }
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

void EditorIcon::paint(QPainter& painter, QPointF center, const QColor& tint) const {
    const QPixmap picture = pixmap(tint, DevicePixels::ratio(painter));
    if (picture.isNull())
        return;
    const QSizeF extent = picture.deviceIndependentSize();
    const QPointF corner = center - QPointF(extent.width(), extent.height()) / 2;
    painter.drawPixmap(DevicePixels::aligned(painter, corner), picture);
}

int EditorIcons::variant(double pixels) {
    return pixels > 64 ? 256 : pixels > 32 ? 128 : 64;
}

std::optional<EditorIcon> EditorIcons::image(const QString& name, const QString& symbol, double size,
                                             double devicePixelRatio) {
    static QHash<QString, QImage> cache;
    const int edge = variant(size * devicePixelRatio);
    const QString key = name + QLatin1Char('-') + QString::number(edge);
    auto cached = cache.constFind(key);
    if (cached == cache.constEnd()) {
        QImage loaded = loadFile(name, edge);
        if (loaded.isNull())
            loaded = loadThemeIcon(symbol, edge);
        if (loaded.isNull())
            return std::nullopt;
        cached = cache.insert(key, loaded);
    }
    return EditorIcon{*cached, name != QLatin1String("pixelate"), size};
}

#include "Output/JPEGEncoder.h"

#include "Output/ImageEncoder.h"

#include <QPainter>

#include <turbojpeg.h>

#include <memory>
#include <type_traits>

namespace {

constexpr int quality = 95;

/// JPEG has no alpha, and what is left of a transparent pixel without it is black.
QImage flattenedOntoWhite(const QImage& image) {
    if (!image.hasAlphaChannel())
        return image.convertToFormat(QImage::Format_RGB32);
    QImage flat(image.size(), QImage::Format_RGB32);
    if (flat.isNull())
        return flat;
    flat.fill(Qt::white);
    QImage source = image;
    source.setDevicePixelRatio(1);
    QPainter(&flat).drawImage(0, 0, source);
    return flat;
}

tl::unexpected<Error> failure(const QString& description) {
    return tl::unexpected(
        Error{ImageEncoder::errorDomain, static_cast<int>(ScreenshotSaveFormat::jpg), description});
}

} // namespace

Result<QByteArray> ImageEncoder::encodeJPEG(const QImage& image) {
    const QImage source = flattenedOntoWhite(image);
    if (source.isNull())
        return failure(QStringLiteral("There is not enough memory for the picture."));
    using Compressor = std::remove_pointer_t<tjhandle>;
    const std::unique_ptr<Compressor, decltype(&tjDestroy)> compressor(tjInitCompress(), &tjDestroy);
    if (!compressor)
        return failure(QString::fromUtf8(tjGetErrorStr2(nullptr)));

    unsigned long size = tjBufSize(source.width(), source.height(), TJSAMP_444);
    if (size == static_cast<unsigned long>(-1))
        return failure(QStringLiteral("The picture is too large for the format."));
    QByteArray file(static_cast<qsizetype>(size), Qt::Uninitialized);
    auto* bytes = reinterpret_cast<unsigned char*>(file.data());
    constexpr int pixelFormat = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? TJPF_BGRX : TJPF_XRGB;
    if (tjCompress2(compressor.get(), source.constBits(), source.width(),
                    static_cast<int>(source.bytesPerLine()), source.height(), pixelFormat, &bytes, &size,
                    TJSAMP_444, quality, TJFLAG_NOREALLOC | TJFLAG_ACCURATEDCT) != 0)
        return failure(QString::fromUtf8(tjGetErrorStr2(compressor.get())));
    file.resize(static_cast<qsizetype>(size));
    file.squeeze();
    return file;
}

#include "Output/ImageEncoder.h"

#include "Output/JPEGEncoder.h"
#include "Output/PNGEncoder.h"

#include <QColorSpace>

namespace {

QImage inSRGB(const QImage& image) {
    const QColorSpace space = image.colorSpace();
    if (!space.isValid() || space == QColorSpace(QColorSpace::SRgb))
        return image;
    // Indexed and grey pictures cannot hold the converted colours, so they become direct ones first.
    QImage converted =
        image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    converted.convertToColorSpace(QColorSpace::SRgb);
    return converted;
}

} // namespace

Result<QByteArray> ImageEncoder::encode(ScreenshotSaveFormat format, const QImage& image) {
    if (image.isNull())
        return tl::unexpected(
            Error{errorDomain, static_cast<int>(format), QStringLiteral("The picture has no pixels.")});
    return format == ScreenshotSaveFormat::png ? encodePNG(inSRGB(image)) : encodeJPEG(inSRGB(image));
}

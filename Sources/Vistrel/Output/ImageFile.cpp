#include "Output/ImageFile.h"

#include "Output/ImageEncoder.h"
#include "VistrelPlatform/System/AtomicFile.h"

Result<void> saveImage(const QString& path, ScreenshotSaveFormat format, const QImage& image) {
    const Result<QByteArray> data = ImageEncoder::encode(format, image);
    if (!data)
        return tl::unexpected(data.error());
    return writeAtomically(path, *data);
}

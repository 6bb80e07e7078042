#include "Output/ImageClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

ImageClipboard::ImageClipboard() : ImageClipboard(Access{}) {}

ImageClipboard::ImageClipboard(Access use) : access(std::move(use)) {
    if (!access.set)
        access.set = [](QMimeData* data) { QGuiApplication::clipboard()->setMimeData(data); };
    if (!access.owned)
        access.owned = [] { return QGuiApplication::clipboard()->ownsClipboard(); };
}

bool ImageClipboard::copyPNG(const QByteArray& png) {
    auto* data = new QMimeData;
    // Only the bytes: offered as an image, the toolkit would encode it again in every format it knows.
    data->setData(QStringLiteral("image/png"), png);
    access.set(data);
    return access.owned();
}

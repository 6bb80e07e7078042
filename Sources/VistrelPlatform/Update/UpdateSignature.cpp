#include "VistrelPlatform/Update/UpdateSignature.h"

#include "VistrelPlatform/Update/UpdateError.h"

#include <QFile>

namespace {

constexpr qsizetype keySize = 32;

} // namespace

std::optional<QByteArray> UpdateSignature::publicKey(const QString& base64) {
    const auto key =
        QByteArray::fromBase64Encoding(base64.trimmed().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!key || key.decoded.size() != keySize)
        return std::nullopt;
    return key.decoded;
}

Result<void> UpdateSignature::verify(const QString& path, const Expected& expected,
                                     const NetworkServices& cryptography) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return tl::unexpected(UpdateError::make(UpdateError::invalidArchive, file.errorString()));
    if (expected.length <= 0 || file.size() != expected.length)
        return tl::unexpected(
            UpdateError::make(UpdateError::invalidArchive,
                              QStringLiteral("The update does not have the size that was announced.")));
    const uchar* content = file.map(0, expected.length);
    if (content == nullptr)
        return tl::unexpected(UpdateError::make(UpdateError::invalidArchive, file.errorString()));
    if (!cryptography.isSigned({content, expected.length}, expected.signature, expected.key))
        return tl::unexpected(UpdateError::make(
            UpdateError::invalidSignature,
            QStringLiteral("The update is not signed by its publisher. It was not installed.")));
    return {};
}

#include "VistrelPlatform/Update/UpdateSignature.h"

#include "VistrelPlatform/Update/UpdateError.h"

#include <QFile>

#include <memory>
#include <openssl/evp.h>

namespace {

constexpr qsizetype keySize = 32;

struct FreeKey {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct FreeContext {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

const unsigned char* bytes(const QByteArray& array) {
    return reinterpret_cast<const unsigned char*>(array.constData());
}

bool isSigned(const unsigned char* content, size_t size, const QByteArray& signature, const QByteArray& key) {
    const std::unique_ptr<EVP_PKEY, FreeKey> verifier(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytes(key), static_cast<size_t>(key.size())));
    const std::unique_ptr<EVP_MD_CTX, FreeContext> context(EVP_MD_CTX_new());
    return verifier && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, verifier.get()) == 1 &&
           EVP_DigestVerify(context.get(), bytes(signature), static_cast<size_t>(signature.size()), content,
                            size) == 1;
}

} // namespace

std::optional<QByteArray> UpdateSignature::publicKey(const QString& base64) {
    const auto key =
        QByteArray::fromBase64Encoding(base64.trimmed().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!key || key.decoded.size() != keySize)
        return std::nullopt;
    return key.decoded;
}

Result<void> UpdateSignature::verify(const QString& path, qint64 length, const QByteArray& signature,
                                     const QByteArray& key) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return tl::unexpected(UpdateError::make(UpdateError::invalidArchive, file.errorString()));
    if (length <= 0 || file.size() != length)
        return tl::unexpected(
            UpdateError::make(UpdateError::invalidArchive,
                              QStringLiteral("The update does not have the size that was announced.")));
    const uchar* content = file.map(0, length);
    if (content == nullptr)
        return tl::unexpected(UpdateError::make(UpdateError::invalidArchive, file.errorString()));
    if (!isSigned(content, static_cast<size_t>(length), signature, key))
        return tl::unexpected(UpdateError::make(
            UpdateError::invalidSignature,
            QStringLiteral("The update is not signed by its publisher. It was not installed.")));
    return {};
}

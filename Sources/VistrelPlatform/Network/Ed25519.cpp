#include "VistrelPlatform/Network/Ed25519.h"

#include <memory>
#include <openssl/evp.h>

namespace {

struct FreeKey {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct FreeContext {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

const unsigned char* bytes(QByteArrayView array) {
    return reinterpret_cast<const unsigned char*>(array.data());
}

} // namespace

bool Ed25519::verifies(QByteArrayView content, const QByteArray& signature, const QByteArray& key) {
    const std::unique_ptr<EVP_PKEY, FreeKey> verifier(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytes(key), static_cast<size_t>(key.size())));
    const std::unique_ptr<EVP_MD_CTX, FreeContext> context(EVP_MD_CTX_new());
    return verifier && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, verifier.get()) == 1 &&
           EVP_DigestVerify(context.get(), bytes(signature), static_cast<size_t>(signature.size()),
                            bytes(content), static_cast<size_t>(content.size())) == 1;
}

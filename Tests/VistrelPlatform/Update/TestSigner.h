#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <openssl/evp.h>

/// An Ed25519 key that signs as a publisher would.
class TestSigner {
public:
    TestSigner() : key(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519")) {}

    QString publicKey() const {
        QByteArray raw(32, '\0');
        size_t size = 32;
        EVP_PKEY_get_raw_public_key(key.get(), reinterpret_cast<unsigned char*>(raw.data()), &size);
        return QString::fromLatin1(raw.toBase64());
    }
    QByteArray sign(const QByteArray& content) const {
        QByteArray signature(64, '\0');
        size_t size = 64;
        EVP_MD_CTX* context = EVP_MD_CTX_new();
        EVP_DigestSignInit(context, nullptr, nullptr, nullptr, key.get());
        EVP_DigestSign(context, reinterpret_cast<unsigned char*>(signature.data()), &size,
                       reinterpret_cast<const unsigned char*>(content.constData()),
                       static_cast<size_t>(content.size()));
        EVP_MD_CTX_free(context);
        return signature;
    }

private:
    struct Free {
        void operator()(EVP_PKEY* pointer) const { EVP_PKEY_free(pointer); }
    };
    std::unique_ptr<EVP_PKEY, Free> key;
};

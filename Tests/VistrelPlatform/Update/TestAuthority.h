#pragma once

#include <QByteArray>
#include <QSslCertificate>
#include <QSslKey>

#include <memory>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

/// A certificate authority that exists for one test.
class TestAuthority {
public:
    struct Identity {
        QSslCertificate certificate;
        QSslKey key;
    };
    struct Wish {
        /// In the form of a subject alternative name.
        QByteArray name = "DNS:localhost,IP:127.0.0.1";
        /// Days from now.
        int validFrom = -1;
        int validTo = 1;
    };

    TestAuthority()
        : key(newKey()),
          root(newCertificate("Test Authority", {{}, -10, 10}, key.get(), nullptr, key.get())) {}

    QSslCertificate certificate() const { return asQt(root.get()); }

    Identity issue(const Wish& wish) const {
        const Key own = newKey();
        const Certificate certificate = newCertificate("Test Server", wish, own.get(), root.get(), key.get());
        unsigned char* der = nullptr;
        const int size = i2d_PrivateKey(own.get(), &der);
        const QByteArray bytes(reinterpret_cast<const char*>(der), size);
        OPENSSL_free(der);
        return {asQt(certificate.get()), QSslKey(bytes, QSsl::Ec, QSsl::Der)};
    }

private:
    struct Free {
        void operator()(EVP_PKEY* pointer) const { EVP_PKEY_free(pointer); }
        void operator()(X509* pointer) const { X509_free(pointer); }
        void operator()(X509_EXTENSION* pointer) const { X509_EXTENSION_free(pointer); }
    };
    using Key = std::unique_ptr<EVP_PKEY, Free>;
    using Certificate = std::unique_ptr<X509, Free>;

    static Key newKey() { return Key(EVP_EC_gen("P-256")); }

    static void extend(X509* certificate, int kind, const QByteArray& value) {
        const std::unique_ptr<X509_EXTENSION, Free> extension(
            X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.constData()));
        X509_add_ext(certificate, extension.get(), -1);
    }

    static Certificate newCertificate(const char* name, const Wish& wish, EVP_PKEY* subject, X509* issuer,
                                      EVP_PKEY* signer) {
        static long serial = 1;
        constexpr long day = 24 * 60 * 60;
        Certificate certificate(X509_new());
        X509_set_version(certificate.get(), 2);
        ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), serial++);
        X509_gmtime_adj(X509_getm_notBefore(certificate.get()), wish.validFrom * day);
        X509_gmtime_adj(X509_getm_notAfter(certificate.get()), wish.validTo * day);
        X509_set_pubkey(certificate.get(), subject);
        X509_NAME* subjectName = X509_get_subject_name(certificate.get());
        X509_NAME_add_entry_by_txt(subjectName, "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>(name), -1, -1, 0);
        X509_set_issuer_name(certificate.get(),
                             issuer != nullptr ? X509_get_subject_name(issuer) : subjectName);
        if (issuer != nullptr)
            extend(certificate.get(), NID_subject_alt_name, wish.name);
        else
            extend(certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
        X509_sign(certificate.get(), signer, EVP_sha256());
        return certificate;
    }

    static QSslCertificate asQt(X509* certificate) {
        unsigned char* der = nullptr;
        const int size = i2d_X509(certificate, &der);
        const QByteArray bytes(reinterpret_cast<const char*>(der), size);
        OPENSSL_free(der);
        return QSslCertificate(bytes, QSsl::Der);
    }

    Key key;
    Certificate root;
};

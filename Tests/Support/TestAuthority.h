#pragma once

#include <QByteArray>
#include <QSslCertificate>
#include <QSslKey>

#include <memory>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

/// A certificate authority of the test's own, and servers' certificates made out by it.
class TestAuthority {
public:
    struct Identity {
        QSslCertificate certificate;
        QSslKey key;
    };
    struct Subject {
        const char* names = "IP:127.0.0.1,DNS:localhost";
        /// Seconds from now.
        long validFrom = -3600;
        long validUntil = 3600;
    };

    TestAuthority() : key(EVP_EC_gen("P-256")), root(make(*key, nullptr, {.names = nullptr})) {}

    QSslCertificate certificate() const { return toQt(*root); }
    Identity issue(const Subject& subject) const {
        const Key subjectKey(EVP_EC_gen("P-256"));
        const Certificate made = make(*subjectKey, root.get(), subject);
        const Buffer buffer(BIO_new(BIO_s_mem()));
        PEM_write_bio_PrivateKey(buffer.get(), subjectKey.get(), nullptr, nullptr, 0, nullptr, nullptr);
        return {toQt(*made), QSslKey(content(*buffer), QSsl::Ec)};
    }
    Identity issue() const { return issue(Subject{}); }

private:
    template<auto release>
    struct Release {
        template<class Object>
        void operator()(Object* object) const {
            release(object);
        }
    };
    using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
    using Certificate = std::unique_ptr<X509, Release<X509_free>>;
    using Buffer = std::unique_ptr<BIO, Release<BIO_free>>;

    Certificate make(EVP_PKEY& subjectKey, X509* issuer, const Subject& subject) const {
        static long serial = 0;
        Certificate made(X509_new());
        X509_set_version(made.get(), 2);
        ASN1_INTEGER_set(X509_get_serialNumber(made.get()), ++serial);
        X509_gmtime_adj(X509_getm_notBefore(made.get()), subject.validFrom);
        X509_gmtime_adj(X509_getm_notAfter(made.get()), subject.validUntil);
        X509_NAME* name = X509_get_subject_name(made.get());
        const char* title = issuer == nullptr ? "Test authority" : "Test server";
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>(title),
                                   -1, -1, 0);
        X509_set_issuer_name(made.get(), issuer == nullptr ? name : X509_get_subject_name(issuer));
        X509_set_pubkey(made.get(), &subjectKey);
        if (issuer == nullptr)
            extend(*made, NID_basic_constraints, "critical,CA:TRUE");
        else
            extend(*made, NID_subject_alt_name, subject.names);
        X509_sign(made.get(), key.get(), EVP_sha256());
        return made;
    }
    static void extend(X509& certificate, int kind, const char* value) {
        X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value);
        X509_add_ext(&certificate, extension, -1);
        X509_EXTENSION_free(extension);
    }
    static QByteArray content(BIO& buffer) {
        char* bytes = nullptr;
        const long size = BIO_get_mem_data(&buffer, &bytes);
        return QByteArray(bytes, size);
    }
    static QSslCertificate toQt(X509& certificate) {
        const Buffer buffer(BIO_new(BIO_s_mem()));
        PEM_write_bio_X509(buffer.get(), &certificate);
        return QSslCertificate(content(*buffer));
    }

    Key key;
    Certificate root;
};

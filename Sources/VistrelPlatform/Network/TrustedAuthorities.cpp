#include "VistrelPlatform/Network/TrustedAuthorities.h"

QSslConfiguration TrustedAuthorities::tls(const QList<QSslCertificate>& own) {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    configuration.setProtocol(QSsl::TlsV1_2OrLater);
    const QString file = qEnvironmentVariable("SSL_CERT_FILE");
    // A file that cannot be read vouches for nobody.
    if (!own.isEmpty())
        configuration.setCaCertificates(own);
    else if (!file.isEmpty())
        configuration.setCaCertificates(QSslCertificate::fromPath(file));
    return configuration;
}

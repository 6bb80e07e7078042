#include "VistrelPlatform/Network/TrustedAuthorities.h"

#include <QSslCertificate>

QSslConfiguration TrustedAuthorities::tls() {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    configuration.setProtocol(QSsl::TlsV1_2OrLater);
    const QString file = qEnvironmentVariable("SSL_CERT_FILE");
    if (file.isEmpty())
        return configuration;
    // Naming authorities ends their loading on demand, so the system's are named as well.
    configuration.setCaCertificates(QSslConfiguration::systemCaCertificates() +
                                    QSslCertificate::fromPath(file));
    return configuration;
}

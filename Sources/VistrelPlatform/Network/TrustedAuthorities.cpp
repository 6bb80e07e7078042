#include "VistrelPlatform/Network/TrustedAuthorities.h"

#include <QSslCertificate>

QSslConfiguration TrustedAuthorities::tls() {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    configuration.setProtocol(QSsl::TlsV1_2OrLater);
    const QString file = qEnvironmentVariable("SSL_CERT_FILE");
    // Naming authorities ends their loading on demand, so the system's are named only when needed.
    if (const QList<QSslCertificate> more = QSslCertificate::fromPath(file);
        !file.isEmpty() && !more.isEmpty())
        configuration.setCaCertificates(QSslConfiguration::systemCaCertificates() + more);
    return configuration;
}

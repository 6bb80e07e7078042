#include "VistrelPlatform/Network/TrustedAuthorities.h"

#include <QSslCertificate>
#include <QSslSocket>

QSslConfiguration TrustedAuthorities::tls(const QByteArray& own) {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    configuration.setProtocol(QSsl::TlsV1_2OrLater);
    const QString file = qEnvironmentVariable("SSL_CERT_FILE");
    // A file that cannot be read vouches for nobody.
    if (!own.isEmpty())
        configuration.setCaCertificates(QSslCertificate::fromData(own));
    else if (!file.isEmpty())
        configuration.setCaCertificates(QSslCertificate::fromPath(file));
    return configuration;
}

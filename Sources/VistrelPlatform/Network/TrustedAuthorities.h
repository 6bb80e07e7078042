#pragma once

#include <QByteArray>
#include <QSslConfiguration>

/// Whom the program believes when a server says who it is. Any thread; loads the TLS library.
namespace TrustedAuthorities {

/// For connections that check the server's certificate, TLS 1.2 or newer. Trusted are the authorities in the
/// file that SSL_CERT_FILE names, as by other programs, otherwise the system's; a test names its `own` (PEM).
QSslConfiguration tls(const QByteArray& own = {});

} // namespace TrustedAuthorities

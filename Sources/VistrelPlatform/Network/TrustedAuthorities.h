#pragma once

#include <QSslConfiguration>

/// Whom the program believes when a server says who it is. Any thread; loads the TLS library.
namespace TrustedAuthorities {

/// For connections that check the server's certificate, TLS 1.2 or newer: the system's authorities, and
/// those in the file that SSL_CERT_FILE names, which other programs here go by as well.
QSslConfiguration tls();

} // namespace TrustedAuthorities

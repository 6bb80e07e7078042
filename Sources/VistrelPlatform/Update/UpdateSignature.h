#pragma once

#include "VistrelPlatform/NetworkServices.h"

#include <QByteArray>

/// Ed25519 signatures of whole files. Any thread.
namespace UpdateSignature {

/// The 32 bytes of a key as it stands in the information file (base64); nothing for anything else.
std::optional<QByteArray> publicKey(const QString& base64);

/// What a signature is held against: how long the file must be, and whose it must be.
struct Expected {
    qint64 length = 0;
    QByteArray signature;
    QByteArray key;
};

/// Succeeds only when the file has exactly that length and the signature is the key's over all of it.
Result<void> verify(const QString& path, const Expected& expected, const NetworkServices& cryptography);

} // namespace UpdateSignature

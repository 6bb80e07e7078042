#pragma once

#include <QByteArray>

/// Ed25519 signatures. Any thread.
namespace Ed25519 {

/// Whether `signature` is the raw public key's over all of `content`; false for anything malformed.
bool verifies(QByteArrayView content, const QByteArray& signature, const QByteArray& key);

} // namespace Ed25519

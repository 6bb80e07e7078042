#pragma once

#include "VistrelPlatform/Result.h"

#include <QByteArray>

/// Ed25519 signatures of whole files. Any thread.
namespace UpdateSignature {

/// The 32 bytes of a key as it stands in the information file (base64); nothing for anything else.
std::optional<QByteArray> publicKey(const QString& base64);

/// Succeeds only when the file has exactly `length` bytes and `signature` is `key`'s over all of them.
Result<void> verify(const QString& path, qint64 length, const QByteArray& signature, const QByteArray& key);

} // namespace UpdateSignature

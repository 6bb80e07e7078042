#pragma once

#include "VistrelPlatform/HttpsTransfer.h"
#include "VistrelPlatform/HttpsUpload.h"

#include <memory>

/// What takes a network or cryptography. Main thread unless said otherwise. Most sessions never need it, so
/// it lies in a module of its own.
class NetworkServices {
public:
    NetworkServices() = default;
    NetworkServices(const NetworkServices&) = delete;
    NetworkServices& operator=(const NetworkServices&) = delete;
    virtual ~NetworkServices() = default;

    virtual std::unique_ptr<HttpsTransfer> makeTransfer() = 0;
    virtual std::unique_ptr<HttpsUpload> makeUpload() = 0;
    /// Whether `signature` is the Ed25519 key's over all of `content`. Any thread.
    virtual bool isSigned(QByteArrayView content, const QByteArray& signature,
                          const QByteArray& key) const = 0;
};

/// Where the network comes from: the first call loads it, which may fail.
using NetworkSource = std::function<Result<NetworkServices*>()>;

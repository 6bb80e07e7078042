#pragma once

#include "VistrelPlatform/NetworkServices.h"

/// The network through the toolkit's library, signatures through libcrypto.
class QtNetworkServices : public NetworkServices {
public:
    std::unique_ptr<HttpsTransfer> makeTransfer() override;
    std::unique_ptr<HttpsUpload> makeUpload() override;
    bool isSigned(QByteArrayView content, const QByteArray& signature, const QByteArray& key) const override;
};

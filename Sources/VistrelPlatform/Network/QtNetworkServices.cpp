#include "VistrelPlatform/Network/QtNetworkServices.h"

#include "VistrelPlatform/Network/Ed25519.h"
#include "VistrelPlatform/Network/QtHttpsTransfer.h"
#include "VistrelPlatform/Network/QtHttpsUpload.h"

std::unique_ptr<HttpsTransfer> QtNetworkServices::makeTransfer() {
    return std::make_unique<QtHttpsTransfer>();
}

std::unique_ptr<HttpsUpload> QtNetworkServices::makeUpload() {
    return std::make_unique<QtHttpsUpload>();
}

bool QtNetworkServices::isSigned(QByteArrayView content, const QByteArray& signature,
                                 const QByteArray& key) const {
    return Ed25519::verifies(content, signature, key);
}

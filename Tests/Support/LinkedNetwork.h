#pragma once

#include "VistrelPlatform/Network/QtNetworkServices.h"

/// The network as the test program links it.
inline Result<NetworkServices*> linkedNetwork() {
    static QtNetworkServices services;
    return &services;
}
inline Result<NetworkServices*> missingNetwork() {
    return tl::unexpected(Error{ErrorDomain::system, 0, QStringLiteral("missing")});
}

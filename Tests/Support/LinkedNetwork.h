#pragma once

#include "VistrelPlatform/Network/QtNetworkServices.h"

/// The network as the test program links it.
inline Result<NetworkServices*> linkedNetwork() {
    static QtNetworkServices services;
    return &services;
}

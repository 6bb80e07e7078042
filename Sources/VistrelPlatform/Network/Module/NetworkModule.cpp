#include "VistrelPlatform/ModuleEntry.h"
#include "VistrelPlatform/Network/QtNetworkServices.h"

void* vistrelModule(const char* version) {
    return moduleEntry<NetworkServices, QtNetworkServices>(version);
}

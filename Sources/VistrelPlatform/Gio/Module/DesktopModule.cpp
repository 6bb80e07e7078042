#include "VistrelPlatform/Gio/GioDesktopLibrary.h"
#include "VistrelPlatform/ModuleEntry.h"

void* vistrelModule(const char* version) {
    return moduleEntry<DesktopLibrary, GioDesktopLibrary>(version);
}

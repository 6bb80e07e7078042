#pragma once

#include "VistrelPlatform/Gio/GioDesktopLibrary.h"

/// The desktop's library as the test program links it.
inline Result<DesktopLibrary*> linkedDesktop() {
    static GioDesktopLibrary library;
    return &library;
}
inline Result<DesktopLibrary*> missingDesktop() {
    return tl::unexpected(Error{ErrorDomain::system, 0, QStringLiteral("missing")});
}

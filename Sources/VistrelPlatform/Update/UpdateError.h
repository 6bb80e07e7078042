#pragma once

#include "VistrelPlatform/Result.h"

/// Failures of update checks and installations.
namespace UpdateError {

inline const QString domain = QStringLiteral("SUSparkleErrorDomain");

enum Code {
    /// The program was built without a feed address or a key, or they are unusable.
    notConfigured = 1,
    invalidFeed = 1000,
    /// The feed has nothing newer.
    noUpdate = 1001,
    feedUnavailable = 1002,
    downloadFailed = 2001,
    invalidArchive = 3000,
    invalidSignature = 3001,
    installationFailed = 4005,
};

inline Error make(Code code, const QString& description) {
    return {domain, code, description};
}

} // namespace UpdateError

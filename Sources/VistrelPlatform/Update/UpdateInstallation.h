#pragma once

#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/Update/UpdateVersion.h"

/// How this copy of the program is installed, and how it is replaced. A value; any thread.
struct UpdateInstallation {
    enum class Kind {
        /// One file that belongs to the user.
        appImage,
        /// A folder of the user's that holds this program's installed tree and nothing else.
        privatePrefix,
        /// Anything else, such as a distribution's package: never touched.
        managed
    };

    Kind kind = Kind::managed;
    /// The AppImage, or the folder.
    QString path;

    static UpdateInstallation detect(const QString& executable, const QString& appImage);

    /// Puts the verified archive in the place of this installation in one step, or changes nothing. Fails
    /// unless the archive holds exactly `version`. Returns the program to start next time.
    Result<QString> replace(const QString& archive, const UpdateVersion& version) const;

    friend bool operator==(const UpdateInstallation&, const UpdateInstallation&) = default;
};

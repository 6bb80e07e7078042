#pragma once

#include "VistrelPlatform/Update/UpdateVersion.h"

#include <QByteArray>
#include <QUrl>

/// One published version. A value that came from the network: what is shown of it goes through
/// `ReleaseNotes`.
struct AppcastItem {
    UpdateVersion version;
    /// The version as users know it.
    QString displayVersion;
    std::optional<UpdateVersion> minimumSystemVersion;
    /// Where the archive is, its exact size in bytes, and the 64 bytes of its signature.
    QUrl archive;
    qint64 length = 0;
    QByteArray signature;
    /// A page about this version; empty when there is none.
    QUrl link;
    QString notes;
    bool notesAreHtml = true;

    friend bool operator==(const AppcastItem&, const AppcastItem&) = default;
};

#pragma once

#include "Desktop/Fixture/Waiting.h"
#include "Support/TestFiles.h"
#include "VistrelPlatform/Update/TestSigner.h"

#include <QProcess>
#include <QUrl>

/// An installed tree of the given version, as an installation writes it.
inline void writeInstalledTree(const QString& prefix, const QByteArray& version) {
    writeFile(prefix + QStringLiteral("/bin/vistrel"), "#!/bin/sh\necho " + version + "\n", true);
    writeFile(prefix + QStringLiteral("/share/vistrel/Info.json"),
              "{\"CFBundleShortVersionString\": \"" + version + "\"}");
    writeFile(prefix + QStringLiteral("/share/vistrel/Files.txt"),
              "bin/vistrel\nshare/vistrel/Info.json\nshare/vistrel/Files.txt\n");
}

/// Packed as it is published; where the archive is.
inline QString packTree(const QString& folder) {
    QString archive = folder + QStringLiteral(".tar.gz");
    QProcess::execute(QStringLiteral("tar"), {QStringLiteral("-C"), QFileInfo(folder).path(),
                                              QStringLiteral("-czf"), archive, QFileInfo(folder).fileName()});
    return archive;
}

struct FeedItem {
    QByteArray version = "2.0";
    QUrl archive;
    qint64 length = 0;
    QByteArray signature;
    QByteArray more;
};

inline QByteArray feedWith(const FeedItem& item) {
    return "<?xml version=\"1.0\"?><rss version=\"2.0\" "
           "xmlns:sparkle=\"urn:vistrel:appcast\"><channel><item>" +
           item.more + "<enclosure url=\"" + item.archive.toEncoded() + "\" sparkle:version=\"" +
           item.version + "\" length=\"" + QByteArray::number(item.length) + "\" sparkle:edSignature=\"" +
           item.signature.toBase64() + "\"/></item></channel></rss>";
}

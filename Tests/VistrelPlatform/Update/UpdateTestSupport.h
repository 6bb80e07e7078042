#pragma once

#include "VistrelPlatform/Update/TestSigner.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <QUrl>

#include <functional>

/// Runs the event loop until `done`; false after a time that no healthy machine needs.
inline bool waitUntil(const std::function<bool()>& done) {
    const QDeadlineTimer deadline(60000);
    while (!done() && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
        QThread::msleep(1);
    }
    return done();
}

inline void writeFile(const QString& path, const QByteArray& text, bool executable = false) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    file.close();
    if (executable)
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

inline QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// An installed tree of the given version, as an installation writes it.
inline void writeInstalledTree(const QString& prefix, const QByteArray& version) {
    writeFile(prefix + QStringLiteral("/bin/vistrel"), "#!/bin/sh\necho " + version + "\n", true);
    writeFile(prefix + QStringLiteral("/share/vistrel/Info.json"),
              "{\"CFBundleShortVersionString\": \"" + version + "\"}");
    writeFile(prefix + QStringLiteral("/share/vistrel/Files.txt"),
              "bin/vistrel\nshare/vistrel/Info.json\nshare/vistrel/Files.txt\n");
}

/// The tree packed as it is published.
inline QByteArray packedTree(const QString& folder) {
    const QString archive = folder + QStringLiteral(".tar.gz");
    QProcess::execute(QStringLiteral("tar"), {QStringLiteral("-C"), QFileInfo(folder).path(),
                                              QStringLiteral("-czf"), archive, QFileInfo(folder).fileName()});
    return readFile(archive);
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

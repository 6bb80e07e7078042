#pragma once

#include "VistrelPlatform/SharePeer.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

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

/// A message bus of its own for one test, with a connection for the code under test and one for its peers.
class ShareTestBus {
public:
    ShareTestBus() {
        const QString configuration = folder.filePath(QStringLiteral("bus.conf"));
        writeFile(configuration,
                  QStringLiteral("<busconfig><type>session</type><listen>unix:tmpdir=%1</listen>"
                                 "<servicedir>%1</servicedir><policy context=\"default\">"
                                 "<allow send_destination=\"*\" eavesdrop=\"true\"/>"
                                 "<allow eavesdrop=\"true\"/><allow own=\"*\"/>"
                                 "</policy></busconfig>")
                      .arg(folder.path()));
        for (const char* name : {"org.bluez.obex", "org.freedesktop.portal.Desktop"})
            writeFile(folder.filePath(QString::fromLatin1(name) + QStringLiteral(".service")),
                      QStringLiteral("[D-BUS Service]\nName=%1\nExec=/bin/false\n").arg(QLatin1String(name)));
        daemon.start(QStringLiteral("dbus-daemon"),
                     {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                      QStringLiteral("--config-file=") + configuration});
        daemon.waitForReadyRead();
        const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
        QDBusConnection::connectToBus(address, QStringLiteral("client"));
        QDBusConnection::connectToBus(address, QStringLiteral("peer"));
    }
    ~ShareTestBus() {
        QDBusConnection::disconnectFromBus(QStringLiteral("client"));
        QDBusConnection::disconnectFromBus(QStringLiteral("peer"));
        daemon.kill();
        daemon.waitForFinished();
    }

    QDBusConnection client() const { return QDBusConnection(QStringLiteral("client")); }
    QDBusConnection peer() const { return QDBusConnection(QStringLiteral("peer")); }

    static void writeFile(const QString& path, const QString& text) {
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(text.toUtf8());
    }

private:
    QTemporaryDir folder;
    QProcess daemon;
};

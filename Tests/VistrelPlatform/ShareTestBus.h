#pragma once

#include "Desktop/Fixture/Waiting.h"
#include "Support/TestFiles.h"
#include "VistrelPlatform/SharePeer.h"

#include <QProcess>
#include <QTemporaryDir>

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
                      .arg(folder.path())
                      .toUtf8());
        for (const QByteArray name : {"org.bluez.obex", "org.freedesktop.portal.Desktop"})
            writeFile(folder.filePath(QString::fromLatin1(name + ".service")),
                      "[D-BUS Service]\nName=" + name + "\nExec=/bin/false\n");
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

private:
    QTemporaryDir folder;
    QProcess daemon;
};

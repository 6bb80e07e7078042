#pragma once

#include "VistrelPlatform/Freedesktop/SharePictureFile.h"
#include "VistrelPlatform/ShareServices.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <memory>

/// Pushes one file to one Bluetooth device. Main thread. Deletes itself when it is over.
class ShareObexTransfer : public QObject {
    Q_OBJECT
public:
    ShareObexTransfer(QDBusConnection sessionBus, std::shared_ptr<SharePictureFile> picture,
                      ShareServices::Completion report, QObject* parent);

    /// Connects to the device at `address` from the adapter at `adapterAddress`.
    void start(const QString& address, const QString& adapterAddress);

private Q_SLOTS:
    void transferChanged(const QDBusMessage& message);
    void serviceChanged(const QString& name, const QString& oldOwner, const QString& newOwner);

private:
    void send();
    void sent(const QDBusMessage& reply);
    void statusChanged(const QString& status);
    void finish(bool shared);

    QDBusConnection bus;
    std::shared_ptr<SharePictureFile> file;
    ShareServices::Completion completion;
    QString session;
    QString transfer;
    /// Status changes that came before the name of our transfer.
    QMap<QString, QString> earlyStatus;
    bool finished = false;
};

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <chrono>
#include <functional>

/// The desktop portal's permission to take pictures of the screen, which a program in a sandbox needs. Main
/// thread. The stored permission is read at the start and followed from then on.
class PortalScreenAccess : public QObject {
    Q_OBJECT
public:
    /// Under which name the portal knows this program; empty outside a sandbox, where no portal is asked.
    static QString sandboxName();

    /// The store may take `longestWait` to answer.
    PortalScreenAccess(QDBusConnection sessionBus, QString name,
                       std::chrono::milliseconds longestWait = std::chrono::seconds(2));

    bool isGranted() const { return granted; }
    /// Opens the portal's own question and calls back with its answer, once. A question that is still open
    /// is forgotten.
    void prompt(std::function<void(bool)> onAnswered);

private Q_SLOTS:
    void storeChanged(const QDBusMessage& change);

private:
    void follow(const QVariant& permissions);

    QDBusConnection bus;
    QString sandbox;
    std::unique_ptr<QObject> question;
    bool granted = false;
};

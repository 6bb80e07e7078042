#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <functional>

/// Answers every call to one bus name as the test says.
class SharePeer : public QDBusVirtualObject {
public:
    using Answer = std::function<void(const QDBusMessage&)>;

    SharePeer(QDBusConnection connection, const QString& name, Answer answerCall)
        : bus(std::move(connection)), service(name), answer(std::move(answerCall)) {
        bus.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
        bus.registerService(service);
    }
    ~SharePeer() override { leave(); }

    void leave() {
        bus.unregisterObject(QStringLiteral("/"), QDBusConnection::UnregisterTree);
        bus.unregisterService(service);
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        answer(message);
        return true;
    }

private:
    QDBusConnection bus;
    QString service;
    Answer answer;
};

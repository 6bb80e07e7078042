#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <functional>

/// One call of a desktop-portal method and its answer, which comes later as a signal. Main thread.
/// Destroying it forgets the answer.
class SharePortalRequest : public QObject {
    Q_OBJECT
public:
    enum class Answer {
        /// The portal or the interface is not there, or refused the call.
        unavailable,
        yes,
        no
    };

    SharePortalRequest(QDBusConnection sessionBus, QObject* parent);

    /// Calls `method` of `interface` with `arguments` and, at their end, `options` with the request's token.
    void call(const QString& interface, const QString& method, const QVariantList& arguments,
              QVariantMap options);

    /// Called once; the request may be deleted (later) from within.
    std::function<void(Answer)> onAnswer;
    /// What came with the answer.
    QVariantMap results;

private Q_SLOTS:
    void response(const QDBusMessage& message);
    void portalChanged(const QString& name, const QString& oldOwner, const QString& newOwner);

private:
    void listen(const QString& handle);
    void answer(Answer answer);

    QDBusConnection bus;
    QString token;
    QString listening;
};

#pragma once

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

#include <functional>

/// What the desktop calls to bring the running program forward. Main thread.
class ApplicationInterface : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    ApplicationInterface(QObject* object, std::function<void(const QString& token)> activated);

    /// The entries in which the caller hands over its permission to come forward.
    static QVariantMap platformData(const QString& token);

public Q_SLOTS:
    // The names are the protocol's.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& name, const QVariantList& parameter, const QVariantMap& platformData);

private:
    std::function<void(const QString&)> onActivated;
};

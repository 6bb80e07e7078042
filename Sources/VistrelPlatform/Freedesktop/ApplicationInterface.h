#pragma once

#include "VistrelPlatform/RunningInstance.h"

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

#include <functional>

/// What the desktop calls to bring the running program forward or to capture with it. Main thread.
class ApplicationInterface : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    /// The one action it knows; others are ignored.
    static inline const QString captureAction = QStringLiteral("capture");

    ApplicationInterface(QObject* object, std::function<void(const Activation&)> activated);

    /// The entries in which the caller hands over its permission to come forward.
    static QVariantMap platformData(const QString& token);

public Q_SLOTS:
    // The names are the protocol's.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& name, const QVariantList& parameter, const QVariantMap& platformData);

private:
    std::function<void(const Activation&)> onActivated;
};

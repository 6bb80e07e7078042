#pragma once

#include "VistrelPlatform/TrayHost.h"

#include <QDBusConnection>

/// Panels that show status items over the session bus. Main thread; nothing waits for the bus, so the
/// first answer comes with a `changed`.
class StatusNotifierHost : public TrayHost {
    Q_OBJECT
public:
    explicit StatusNotifierHost(const QDBusConnection& connection = QDBusConnection::sessionBus());

    bool isPresent() const override { return present; }
    bool drawsMenus() const override { return true; }

private Q_SLOTS:
    void ask();

private:
    void setPresent(bool isPresent);

    QDBusConnection bus;
    bool present = false;
};

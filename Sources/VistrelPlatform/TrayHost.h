#pragma once

#include <QObject>

/// Whether something on the desktop shows status items. Main thread.
class TrayHost : public QObject {
    Q_OBJECT
public:
    virtual bool isPresent() const = 0;
    /// Whether it draws an item's menu itself, in colours that it tells nobody.
    virtual bool drawsMenus() const = 0;

Q_SIGNALS:
    /// A host came or went.
    void changed();
};

#pragma once

#include <QObject>

/// Whether something on the desktop shows status items. Main thread.
class TrayHost : public QObject {
    Q_OBJECT
public:
    virtual bool isPresent() const = 0;

Q_SIGNALS:
    /// A host came or went.
    void changed();
};

#pragma once

#include <QString>
#include <QUuid>

/// A refused shortcut that the user has to be told about; every alert has an id of its own.
struct ShortcutSetupAlert {
    QUuid id;
    QString message;

    friend bool operator==(const ShortcutSetupAlert&, const ShortcutSetupAlert&) = default;
};

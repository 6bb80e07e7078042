#pragma once

#include "VistrelPlatform/LoginItem.h"

#include <QString>
#include <QStringList>

/// The login item as an autostart entry of the user. Main thread.
class AutostartLoginItem : public LoginItem {
public:
    struct Program {
        /// A program in its build tree is never enrolled.
        bool installed = false;
        /// What the desktop is to start.
        QString executable;
        QStringList desktopNames;
    };

    /// The running program.
    AutostartLoginItem();
    explicit AutostartLoginItem(Program started);

    LoginItemStatus status() const override;
    Result<void> enroll() override;
    Result<void> withdraw() override;

private:
    static QString entryPath();

    Program program;
};

/// A program's path as one argument of an entry's Exec line, as it stands in the file.
QString desktopEntryArgument(const QString& path);

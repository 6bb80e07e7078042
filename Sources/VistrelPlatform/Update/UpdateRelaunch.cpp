#include "VistrelPlatform/Update/UpdateRelaunch.h"

#include <QCoreApplication>
#include <QProcess>

bool UpdateRelaunch::startAfterExit(const QString& program) {
    // A process that will not end must not keep the shell waiting for ever.
    const QString script = QStringLiteral("n=0; while kill -0 \"$0\" 2>/dev/null && [ $n -lt 300 ]; "
                                          "do sleep 0.1; n=$((n+1)); done; exec \"$1\"");
    return QProcess::startDetached(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), script, QString::number(QCoreApplication::applicationPid()), program});
}

#pragma once

#include <QFileInfo>
#include <QStandardPaths>

#include <gtest/gtest.h>

/// True when the machine has these programs (by name) and files (by path). A test that needs others returns:
/// it counts as skipped, and has failed where CI is set, for Scripts/packages is to bring everything.
inline bool provided(std::initializer_list<const char*> things) {
    for (const char* const thing : things) {
        const QString name = QString::fromUtf8(thing);
        if (name.startsWith(u'/') ? QFileInfo::exists(name) : !QStandardPaths::findExecutable(name).isEmpty())
            continue;
        if (qEnvironmentVariableIsSet("CI"))
            ADD_FAILURE() << thing << " is not installed; Scripts/packages must name its package";
        else
            [thing] { GTEST_SKIP() << thing << " is not installed"; }();
        return false;
    }
    return true;
}

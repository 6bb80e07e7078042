#pragma once

#include <QByteArray>

/// Sets an environment variable for the length of a test and puts the former value back.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* variable, const QByteArray& value)
        : name(variable), wasSet(qEnvironmentVariableIsSet(variable)), former(qgetenv(variable)) {
        if (value.isNull())
            qunsetenv(variable);
        else
            qputenv(variable, value);
    }
    ~ScopedEnvironment() {
        if (wasSet)
            qputenv(name, former);
        else
            qunsetenv(name);
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    const char* name;
    bool wasSet;
    QByteArray former;
};

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>

/// A program started by a test, with its output in files. Ends with its owner, by its process id.
class ChildProgram {
public:
    using Environment = std::map<std::string, std::string>;

    struct Start {
        QString program;
        QStringList arguments;
        Environment environment;
        /// Folder and file-name stem of the two output files.
        QString outputStem;
    };

    /// Stops the test program when the child cannot be forked; a program that is not there exits with 127.
    explicit ChildProgram(const Start& start);
    ~ChildProgram();
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    pid_t id() const { return processID; }
    bool isRunning();
    /// The exit code, or minus the signal that ended it; absent when it still runs after `deadline`.
    std::optional<int> waitForExit(std::chrono::milliseconds deadline);
    void sendSignal(int signal);
    /// SIGTERM, then SIGKILL for a child that does not listen.
    void end();

    QByteArray standardOutput() const;
    QByteArray standardError() const;

private:
    pid_t processID = -1;
    std::optional<int> exitCode;
    QString outputPath;
    QString errorPath;
};

#include "Desktop/Fixture/ChildProgram.h"

#include "Desktop/Fixture/Waiting.h"

#include <QFile>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <vector>

namespace {

std::vector<char*> pointers(std::vector<std::string>& strings) {
    std::vector<char*> result;
    result.reserve(strings.size() + 1);
    for (std::string& string : strings)
        result.push_back(string.data());
    result.push_back(nullptr);
    return result;
}

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

int openForWriting(const QString& path) {
    return open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

} // namespace

ChildProgram::ChildProgram(const Start& start)
    : outputPath(start.outputStem + QStringLiteral(".out")),
      errorPath(start.outputStem + QStringLiteral(".err")) {
    // Everything is built before the fork: the child may only make plain system calls.
    std::vector<std::string> arguments{start.program.toStdString()};
    for (const QString& argument : start.arguments)
        arguments.push_back(argument.toStdString());
    std::vector<std::string> environment;
    for (const auto& [name, value] : start.environment)
        environment.push_back(std::string(name).append("=").append(value));
    const std::vector<char*> argumentPointers = pointers(arguments);
    const std::vector<char*> environmentPointers = pointers(environment);
    const int output = openForWriting(outputPath);
    const int error = openForWriting(errorPath);
    const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    const pid_t parent = getpid();

    processID = fork();
    if (processID == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(126);
        dup2(input, STDIN_FILENO);
        dup2(output, STDOUT_FILENO);
        dup2(error, STDERR_FILENO);
        execvpe(argumentPointers.front(), argumentPointers.data(), environmentPointers.data());
        _exit(127);
    }
    close(input);
    close(output);
    close(error);
    if (processID < 0)
        qFatal("cannot start %s", qPrintable(start.program));
}

ChildProgram::~ChildProgram() {
    end();
}

bool ChildProgram::isRunning() {
    if (exitCode)
        return false;
    int status = 0;
    if (waitpid(processID, &status, WNOHANG) == 0)
        return true;
    exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return false;
}

std::optional<int> ChildProgram::waitForExit(std::chrono::milliseconds deadline) {
    waitUntil([this] { return !isRunning(); }, deadline);
    return exitCode;
}

void ChildProgram::sendSignal(int signal) {
    if (isRunning())
        kill(processID, signal);
}

void ChildProgram::end() {
    sendSignal(SIGTERM);
    if (waitForExit(std::chrono::seconds(5)))
        return;
    sendSignal(SIGKILL);
    waitForExit(std::chrono::seconds(5));
}

QByteArray ChildProgram::standardOutput() const {
    return contents(outputPath);
}

QByteArray ChildProgram::standardError() const {
    return contents(errorPath);
}

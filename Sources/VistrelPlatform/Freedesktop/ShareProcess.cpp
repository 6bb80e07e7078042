#include "VistrelPlatform/Freedesktop/ShareProcess.h"

#include "VistrelPlatform/CaptureTime.h"

#include <QFile>
#include <QSocketNotifier>

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// The program leads a session of its own, hears no signal as ignored or blocked because we do, and does
/// not read from our standard input.
class SpawnSettings {
public:
    SpawnSettings() {
        posix_spawnattr_init(&attributes);
        posix_spawn_file_actions_init(&actions);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setflags(&attributes,
                                 POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }

    posix_spawnattr_t attributes{};
    posix_spawn_file_actions_t actions{};
};

} // namespace

Result<std::unique_ptr<ShareProcess>> ShareProcess::start(const QStringList& command) {
    std::vector<QByteArray> words;
    words.reserve(static_cast<std::size_t>(command.size()));
    for (const QString& word : command)
        words.push_back(QFile::encodeName(word));
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (QByteArray& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    const SpawnSettings settings;
    pid_t pid = 0;
    const int code = ::posix_spawnp(&pid, arguments.front(), &settings.actions, &settings.attributes,
                                    arguments.data(), environ);
    if (code != 0)
        return tl::unexpected(Error{
            ErrorDomain::system, code,
            QStringLiteral("%1: %2").arg(command.first(), QString::fromLocal8Bit(std::strerror(code)))});
    return std::make_unique<ShareProcess>(pid);
}

ShareProcess::ShareProcess(qint64 pid) : processID(pid), started(CaptureTime::hostTime()) {
    descriptor = static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(pid), 0));
    if (descriptor < 0)
        return;
    notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &ShareProcess::readStatus);
}

ShareProcess::~ShareProcess() {
    if (descriptor >= 0)
        ::close(descriptor);
}

std::chrono::milliseconds ShareProcess::age() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(CaptureTime::hostTime() - started);
}

void ShareProcess::readStatus() {
    notifier->setEnabled(false);
    int status = 0;
    if (::waitpid(static_cast<pid_t>(processID), &status, WNOHANG) != processID)
        return;
    const auto report = std::move(onExit);
    onExit = nullptr;
    if (report)
        report(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
}

#include "App/TerminationSignals.h"

#include "VistrelPlatform/Result.h"

#include <atomic>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array<int, 3> endingSignals{SIGTERM, SIGINT, SIGHUP};
std::atomic<int> wakeDescriptor{-1};
std::array<struct sigaction, endingSignals.size()> earlierActions;

/// Only what is allowed in a signal handler: one byte that wakes the event loop.
void wake(int) {
    const int savedErrno = errno;
    const char byte = 0;
    if (::write(wakeDescriptor.load(), &byte, 1) < 0) {
        // A full pipe has a byte in it already.
    }
    errno = savedErrno;
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent) {
    VISTREL_PRECONDITION(wakeDescriptor.load() < 0, "the signals are handled already");
    if (::pipe2(pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // the signals keep ending the process at once
    wakeDescriptor.store(pipe[1]);
    notifier = std::make_unique<QSocketNotifier>(pipe[0], QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &TerminationSignals::drain);

    struct sigaction action {};
    action.sa_handler = wake;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    for (std::size_t index = 0; index < endingSignals.size(); ++index)
        ::sigaction(endingSignals[index], &action, &earlierActions[index]);
}

TerminationSignals::~TerminationSignals() {
    if (!notifier)
        return;
    for (std::size_t index = 0; index < endingSignals.size(); ++index)
        ::sigaction(endingSignals[index], &earlierActions[index], nullptr);
    wakeDescriptor.store(-1);
    notifier.reset();
    ::close(pipe[0]);
    ::close(pipe[1]);
}

void TerminationSignals::drain() {
    std::array<char, 16> bytes{};
    while (::read(pipe[0], bytes.data(), bytes.size()) > 0) {
    }
    Q_EMIT received();
}

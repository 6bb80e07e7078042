#include "VistrelPlatform/System/SerialQueue.h"

#include "VistrelPlatform/Result.h"

#include <csignal>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {
constexpr int longestThreadName = 15;
// Not more: at the end the user does wait for the queue.
constexpr int utilityNiceness = 3;
} // namespace

SerialQueue::SerialQueue(const QByteArray& name, Priority priority) {
    // Signals belong to the main thread; a new thread inherits the mask.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    worker = std::thread([this, name, priority] { run(name, priority); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

SerialQueue::~SerialQueue() {
    {
        const std::lock_guard lock(mutex);
        stopping = true;
    }
    changed.notify_all();
    worker.join();
}

void SerialQueue::post(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex);
        pending.push_back(std::move(work));
        ++posted;
    }
    changed.notify_all();
}

void SerialQueue::drain() {
    VISTREL_PRECONDITION(std::this_thread::get_id() != worker.get_id(), "a queue cannot wait for itself");
    std::unique_lock lock(mutex);
    const std::uint64_t last = posted;
    changed.wait(lock, [this, last] { return completed >= last; });
}

void SerialQueue::run(const QByteArray& name, Priority priority) {
    pthread_setname_np(pthread_self(), name.right(longestThreadName).constData());
    if (priority == Priority::utility)
        setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), utilityNiceness);
    std::unique_lock lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return stopping || !pending.empty(); });
        if (pending.empty())
            return;
        // Captures are destroyed outside the lock too: they may own something that posts.
        {
            const std::function<void()> work = std::move(pending.front());
            pending.pop_front();
            lock.unlock();
            work();
        }
        lock.lock();
        ++completed;
        changed.notify_all();
    }
}

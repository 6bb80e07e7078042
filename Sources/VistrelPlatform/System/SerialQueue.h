#pragma once

#include <QByteArray>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

/// Runs work one piece at a time, in the order it was posted, on a thread of its own. Posting is safe
/// from any thread. What is still queued at destruction is run first; sleeping costs no wake-ups.
class SerialQueue {
public:
    /// `utility` yields to everything the user waits for.
    enum class Priority { normal, utility };

    /// The system shows the last fifteen characters of `name` as the thread's.
    explicit SerialQueue(const QByteArray& name, Priority priority = Priority::normal);
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    ~SerialQueue();

    void post(std::function<void()> work);
    /// Waits until everything posted before the call has run. Never from the queue's own work.
    void drain();

private:
    void run(const QByteArray& name, Priority priority);

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> pending;
    std::uint64_t posted = 0;
    std::uint64_t completed = 0;
    bool stopping = false;
    std::thread worker;
};

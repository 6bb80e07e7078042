#pragma once

#include <sys/types.h>

#include <cstdint>

/// What the kernel tells about another process of the same user, at one moment.
struct ProcessFacts {
    /// Memory, shared pages divided among those who share them.
    std::int64_t proportionalKiB = 0;
    /// What is the process's own alone.
    std::int64_t privateKiB = 0;
    std::int64_t openFiles = 0;
    std::int64_t mappedSegments = 0;
    /// How often any of its threads has gone to sleep.
    std::int64_t sleeps = 0;

    /// All zero when the process is gone.
    static ProcessFacts of(pid_t process);
};

/// True while the main thread waits in its event loop, whose list of descriptors lives as long as the loop;
/// who waits for a single reply of the window system has its list on the stack.
bool waitsForEvents(pid_t process);

#pragma once

#include "Desktop/Fixture/XClient.h"

#include <sys/types.h>

#include <cstdint>

/// What an X server holds for a process, over all its connections.
struct ClientResources {
    std::int64_t count = 0;
    std::int64_t pixmapBytes = 0;

    /// All zero when the process has no connection.
    static ClientResources of(XClient& client, pid_t process);
};

#pragma once

#include "VistrelPlatform/Result.h"

enum class LoginItemStatus {
    notRegistered = 0,
    enabled = 1,
    /// Registered, but switched off where the desktop lists what it starts.
    requiresApproval = 2,
    /// There is nothing that could be registered.
    notFound = 3
};

/// Whether the desktop starts this program with the user's session. Main thread. Nothing is cached: the
/// user may change it elsewhere at any time.
class LoginItem {
public:
    LoginItem() = default;
    LoginItem(const LoginItem&) = delete;
    LoginItem& operator=(const LoginItem&) = delete;
    virtual ~LoginItem() = default;

    virtual LoginItemStatus status() const = 0;
    virtual Result<void> enroll() = 0;
    virtual Result<void> withdraw() = 0;
};
